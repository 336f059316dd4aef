// The job being edited in the Job window: the document, its file, and the undo stack that every
// change goes through, so each edit can be undone and the title knows when the job is unsaved.
#ifndef JOBMODEL_H
#define JOBMODEL_H

#include "jobdocument.h"

#include <QObject>
#include <QString>
#include <QUndoStack>

#include <functional>

class JobModel : public QObject
{
    Q_OBJECT

public:
    explicit JobModel(QObject *parent = nullptr);
    ~JobModel() override;

    const JobDocument &document() const { return m_document; }
    QUndoStack *undoStack() { return &m_undo; }

    // The file the job was last opened from or saved to; empty for a new job.
    QString filePath() const { return m_path; }
    bool isModified() const { return !m_undo.isClean(); }

    // Starts afresh with `document` (New, Open): no undo history, nothing unsaved.
    void reset(const JobDocument &document, const QString &path = QString());
    // After a save: the job is now `path`, with nothing unsaved.
    void markSaved(const QString &path);

    // One undoable change named `text`: `edit` changes a copy of the document. A change that leaves
    // the document as it was is not recorded. Returns whether anything changed.
    bool change(const QString &text, const std::function<void(JobDocument &)> &edit);

    // Used by the undo commands only.
    void setDocument(const JobDocument &document);

signals:
    void documentChanged();
    void modifiedChanged(bool modified);
    void filePathChanged(const QString &path);

private:
    JobDocument m_document;
    QUndoStack m_undo;
    QString m_path;
};

#endif
