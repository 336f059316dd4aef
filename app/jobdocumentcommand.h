// One change to the job as an undo step: the document before and after it. Pictures are shared
// byte arrays, so keeping both states costs little.
#ifndef JOBDOCUMENTCOMMAND_H
#define JOBDOCUMENTCOMMAND_H

#include "jobdocument.h"

#include <QUndoCommand>

class JobModel;

class JobDocumentCommand : public QUndoCommand
{
public:
    JobDocumentCommand(JobModel *model, const QString &text, JobDocument before, JobDocument after);

    void undo() override;
    void redo() override;

private:
    JobModel *m_model;
    JobDocument m_before;
    JobDocument m_after;
};

#endif
