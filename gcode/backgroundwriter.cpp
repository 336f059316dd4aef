// Writes full output blocks to a device on a helper thread, in order, so that making the
// next block and the system's copy of the last one go on at the same time.
#include "backgroundwriter.h"

#include <QIODevice>

#include <utility>

BackgroundWriter::BackgroundWriter(QIODevice *device) : m_device(device), m_thread(&BackgroundWriter::run, this) {}

BackgroundWriter::~BackgroundWriter()
{
    finish();
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stop = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void BackgroundWriter::write(std::vector<char> &block, qint64 used)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [this] { return !m_slotFull; });
    std::swap(block, m_slot);
    m_slotUsed = used;
    m_slotFull = true;
    lock.unlock();
    m_changed.notify_all();
}

bool BackgroundWriter::finish()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [this] { return !m_slotFull && !m_writing; });
    return !m_failed;
}

void BackgroundWriter::run()
{
    std::vector<char> block;
    for (;;) {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait(lock, [this] { return m_slotFull || m_stop; });
        if (!m_slotFull)
            return;
        std::swap(block, m_slot);
        const qint64 used = m_slotUsed;
        m_slotFull = false;
        m_writing = true;
        lock.unlock();
        m_changed.notify_all();

        const bool ok = m_device->write(block.data(), used) == used;

        lock.lock();
        m_failed = m_failed || !ok;
        m_writing = false;
        lock.unlock();
        m_changed.notify_all();
    }
}
