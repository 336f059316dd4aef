// The job being edited: document, file and undo stack.
#include "jobmodel.h"

#include "jobdocumentcommand.h"

JobModel::JobModel(QObject *parent) : QObject(parent), m_undo(this)
{
    connect(&m_undo, &QUndoStack::cleanChanged, this, [this](bool clean) { emit modifiedChanged(!clean); });
}

// The undo stack says it turns clean as it goes; by then the window listening may be half gone.
JobModel::~JobModel() { disconnect(&m_undo, nullptr, this, nullptr); }

void JobModel::reset(const JobDocument &document, const QString &path)
{
    m_undo.clear();
    m_document = document;
    m_undo.setClean();
    m_path = path;
    emit documentChanged();
    emit filePathChanged(m_path);
    emit modifiedChanged(false);
}

void JobModel::markSaved(const QString &path)
{
    m_undo.setClean();
    if (path != m_path) {
        m_path = path;
        emit filePathChanged(m_path);
    }
}

bool JobModel::change(const QString &text, const std::function<void(JobDocument &)> &edit)
{
    JobDocument after = m_document;
    edit(after);
    if (after == m_document)
        return false;
    m_undo.push(new JobDocumentCommand(this, text, m_document, after));
    return true;
}

void JobModel::setDocument(const JobDocument &document)
{
    m_document = document;
    emit documentChanged();
}
