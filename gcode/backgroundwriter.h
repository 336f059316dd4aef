// Writes full output blocks to a device on a helper thread, in order, so that making the
// next block and the system's copy of the last one go on at the same time.
#ifndef BACKGROUNDWRITER_H
#define BACKGROUNDWRITER_H

#include <QtGlobal>

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

class QIODevice;

class BackgroundWriter
{
public:
    explicit BackgroundWriter(QIODevice *device);
    ~BackgroundWriter();
    BackgroundWriter(const BackgroundWriter &) = delete;
    BackgroundWriter &operator=(const BackgroundWriter &) = delete;

    // Takes the first `used` bytes of `block`; `block` comes back as a free buffer (of
    // any size) for the next one. Waits while the helper still has a block to start on.
    void write(std::vector<char> &block, qint64 used);
    // Waits until every block handed over is written; false once the device refused data.
    bool finish();

private:
    void run();

    QIODevice *m_device;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<char> m_slot;  // the block waiting for the helper, or a free buffer
    qint64 m_slotUsed = 0;
    bool m_slotFull = false;
    bool m_writing = false;
    bool m_failed = false;
    bool m_stop = false;
    std::thread m_thread;  // last: it starts once everything above is set up
};

#endif
