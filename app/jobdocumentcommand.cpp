// One change to the job as an undo step.
#include "jobdocumentcommand.h"

#include "jobmodel.h"

JobDocumentCommand::JobDocumentCommand(JobModel *model, const QString &text, JobDocument before, JobDocument after)
    : QUndoCommand(text), m_model(model), m_before(std::move(before)), m_after(std::move(after))
{}

void JobDocumentCommand::undo() { m_model->setDocument(m_before); }

void JobDocumentCommand::redo() { m_model->setDocument(m_after); }
