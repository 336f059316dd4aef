// Manual machine control from the main window: jog steps and moves, homing, a typed
// G-code line, the header/footer snippets, and the machine panel's wiring.
#include "draw.h"
#include "ui_draw.h"

#include "cpserialport.h"
#include "machinepanel.h"
#include "pgraphicsscene.h"
#include "renderform.h"
#include "workarea.h"

#include <QFile>

// ---- Manual machine control ---------------------------------------------------

void Draw::on_radioButton01mm_clicked(bool checked)
{
    if (checked)
        m_jogStep = 0.1;
}

void Draw::on_radioButton1mm_clicked(bool checked)
{
    if (checked)
        m_jogStep = 1.0;
}

void Draw::on_radioButton10mm_clicked(bool checked)
{
    if (checked)
        m_jogStep = 10.0;
}

void Draw::sendJog(const char *axisTemplate)
{
    // Relative mode first; the machine stays in it after the move.
    emit Sig_toarduino(tr("G91"));
    emit Sig_toarduino(tr(axisTemplate).arg(m_jogStep));
}

void Draw::on_xa_clicked() { sendJog("G1 X%1 F2000"); }
void Draw::on_xp_clicked() { sendJog("G1 X-%1 F2000"); }
void Draw::on_ya_clicked() { sendJog("G1 Y%1 F2000"); }
void Draw::on_yp_clicked() { sendJog("G1 Y-%1 F2000"); }
void Draw::on_home_clicked() { emit Sig_toarduino(QStringLiteral("G28 X Y")); }
void Draw::on_setHome_clicked() { emit Sig_toarduino(QStringLiteral("G92 X0 Y0 \n")); }
void Draw::on_backHome_clicked() { emit Sig_toarduino(QStringLiteral("G1 X0 Y0 \n")); }

void Draw::on_btnSend_clicked() { m_serialPanel->WritePort(ui->lineEditGcodeLine->text()); }

void Draw::on_lineEditGcodeLine_returnPressed() { m_serialPanel->WritePort(ui->lineEditGcodeLine->text()); }

void Draw::loadSnippet(const QString &target)
{
    const QString chosen =
        m_chooseFile(FileQuestion::Open, tr("Gcode Header"), QStringLiteral("."), QStringLiteral("Gcode(*.gcode)"));
    if (!chosen.isEmpty())
        QFile::copy(chosen, target);  // an existing snippet is kept
}

void Draw::on_btnLoadGcodeHead_clicked() { loadSnippet(QStringLiteral("./start.gm")); }
void Draw::on_btnLoadGcodeEnd_clicked() { loadSnippet(QStringLiteral("./end.gm")); }

// The machine panel: a window of its own, framing where the export would put the job.
void Draw::setUpMachinePanel()
{
    m_machinePanel = new MachinePanel(this);
    m_machinePanel->setPortHolder(m_serialPanel);
    m_machinePanel->setFrameSource([this] {
        const QPointF pos = m_renderForm->CurrentItemPos();
        double width = ui->w_line->text().toDouble(), height = ui->h_line->text().toDouble();
        if (!m_pictureLoaded || pos.x() == PGraphicsScene::NoPosition.x())
            return QRectF();
        // The vector export works in whole millimetres.
        if (!ui->radioButtonBlackWhite->isChecked() && !ui->radioButtonGray->isChecked())
            width = int(width), height = int(height);
        return QRectF(pos.x(), WorkArea::Height - pos.y() - height, width, height);
    });
    ui->layoutLanguage->insertWidget(0, m_machinePanel->createOpenButton(this));
    setUpJobWindow();
}
