// The Job window's layer panel: the layers in burning order with their colour, name, operation, speed,
// power and passes, an on/off box each, reordering by drag or by the up and down buttons, and the
// selected layer's settings and parameters. Every edit is one undo step of the job model.
#ifndef LAYERPANEL_H
#define LAYERPANEL_H

#include "jobdocument.h"
#include "jobpresetlibrary.h"

#include <QColor>
#include <QWidget>

#include <functional>

class JobModel;
class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLineEdit;
class QListWidget;
class QPushButton;
class QSpinBox;
class QStackedWidget;
class QToolButton;

class LayerPanel : public QWidget
{
    Q_OBJECT

public:
    explicit LayerPanel(JobModel *model, QWidget *parent = nullptr);

    int currentLayer() const { return m_current; }
    void setCurrentLayer(int index);
    // How a colour is picked: Qt's colour dialog unless replaced (tests answer without a dialog).
    using ColorChooser = std::function<QColor(const QColor &initial)>;
    void setColorChooser(ColorChooser chooser) { m_chooseColor = std::move(chooser); }
    // How a new preset's name is asked: an input dialog unless replaced; empty means cancelled.
    using NameAsker = std::function<QString(const QString &suggestion)>;
    void setNameAsker(NameAsker asker) { m_askName = std::move(asker); }

    // The material presets (job-presets.json in the configuration folder).
    const JobPresetLibrary &presets() const { return m_presets; }
    // Gives the selected layer the preset's settings (one undo step).
    bool applyPreset(int index);
    // Saves the selected layer as a new preset, named by the user.
    bool saveLayerAsPreset();
    // The language the preset names are shown in: "zh", "en" or "ko", from the loaded catalogue.
    static QString language();

    // The line the list shows for a layer.
    static QString summary(const JobLayer &layer);
    QListWidget *list() const { return m_list; }

    void retranslateUi();

signals:
    void currentLayerChanged(int index);

protected:
    void changeEvent(QEvent *event) override;

private:
    void build();
    void refresh();
    void showLayer();
    // One undoable change of the current layer.
    void editLayer(const std::function<void(JobLayer &)> &edit);
    void readListOrder();
    void moveCurrent(int step);
    void fillPresets();

    JobModel *m_model;
    ColorChooser m_chooseColor;
    NameAsker m_askName;
    JobPresetLibrary m_presets;
    int m_current = -1;
    bool m_updating = false;
    bool m_orderCheckPending = false;

    QListWidget *m_list;
    QToolButton *m_add, *m_remove, *m_up, *m_down;
    QComboBox *m_preset;
    QPushButton *m_applyPreset, *m_savePreset;
    QLineEdit *m_name;
    QPushButton *m_color;
    QComboBox *m_operation;
    QDoubleSpinBox *m_speed, *m_power;
    QSpinBox *m_passes;
    QStackedWidget *m_pages;
    // image
    QComboBox *m_imageMode, *m_dither;
    QSpinBox *m_threshold;
    QDoubleSpinBox *m_brightness, *m_contrast, *m_gamma, *m_minPower, *m_imageInterval, *m_imageOverscan,
        *m_reverseOffset;
    QCheckBox *m_invert, *m_imageBidirectional;
    // fill
    QDoubleSpinBox *m_fillInterval, *m_angle, *m_fillOverscan;
    QCheckBox *m_crossHatch, *m_fillBidirectional;
    // line
    QComboBox *m_kerfSide;
    QDoubleSpinBox *m_kerf;
    class QFormLayout *m_form, *m_imageForm, *m_fillForm, *m_lineForm;
};

#endif
