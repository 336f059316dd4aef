// The Job window's layer panel.
#include "layerpanel.h"

#include "jobedits.h"
#include "jobmodel.h"

#include <QAbstractItemModel>
#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QEvent>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

QDoubleSpinBox *spin(double min, double max, int decimals, double step, const QString &suffix = QString())
{
    auto *box = new QDoubleSpinBox;
    box->setRange(min, max);
    box->setDecimals(decimals);
    box->setSingleStep(step);
    box->setSuffix(suffix);
    box->setKeyboardTracking(false);
    return box;
}

QIcon swatch(const QString &color)
{
    QPixmap pixmap(14, 14);
    pixmap.fill(QColor(color));
    QPainter painter(&pixmap);
    painter.setPen(Qt::black);
    painter.drawRect(0, 0, 13, 13);
    return QIcon(pixmap);
}

void setLabel(QFormLayout *form, QWidget *field, const QString &text)
{
    if (auto *label = qobject_cast<QLabel *>(form->labelForField(field)))
        label->setText(text);
}

}  // namespace

LayerPanel::LayerPanel(JobModel *model, QWidget *parent) : QWidget(parent), m_model(model)
{
    setObjectName(QStringLiteral("layerPanel"));
    m_chooseColor = [this](const QColor &initial) { return QColorDialog::getColor(initial, this); };
    m_askName = [this](const QString &suggestion) {
        return QInputDialog::getText(this, tr("Save as preset"), tr("Name of the preset"), QLineEdit::Normal,
                                     suggestion);
    };
    m_presets.load();
    build();
    retranslateUi();
    connect(m_model, &JobModel::documentChanged, this, &LayerPanel::refresh);
    refresh();
}

void LayerPanel::build()
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    m_list = new QListWidget;
    m_list->setObjectName(QStringLiteral("layerList"));
    m_list->setDragDropMode(QAbstractItemView::InternalMove);
    m_list->setDefaultDropAction(Qt::MoveAction);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setMinimumHeight(120);  // a few layers stay in sight when the settings below need to scroll
    layout->addWidget(m_list, 1);

    auto *buttons = new QHBoxLayout;
    m_add = new QToolButton;
    m_add->setText(QStringLiteral("+"));
    m_remove = new QToolButton;
    m_remove->setText(QStringLiteral("\u2212"));
    m_up = new QToolButton;
    m_up->setArrowType(Qt::UpArrow);
    m_down = new QToolButton;
    m_down->setArrowType(Qt::DownArrow);
    for (QToolButton *b : {m_add, m_remove, m_up, m_down})
        buttons->addWidget(b);
    buttons->addStretch();
    layout->addLayout(buttons);

    auto *presetRow = new QHBoxLayout;
    m_preset = new QComboBox;
    m_preset->setObjectName(QStringLiteral("presetCombo"));
    m_preset->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_preset->setMinimumContentsLength(12);
    m_applyPreset = new QPushButton;
    m_savePreset = new QPushButton;
    presetRow->addWidget(m_preset, 1);
    presetRow->addWidget(m_applyPreset);
    presetRow->addWidget(m_savePreset);
    layout->addLayout(presetRow);
    connect(m_applyPreset, &QPushButton::clicked, this, [this] { applyPreset(m_preset->currentIndex()); });
    connect(m_savePreset, &QPushButton::clicked, this, &LayerPanel::saveLayerAsPreset);

    m_form = new QFormLayout;
    m_name = new QLineEdit;
    m_color = new QPushButton;
    m_operation = new QComboBox;
    m_operation->addItems({QString(), QString(), QString()});
    m_speed = spin(1, 100000, 0, 100, QStringLiteral(" mm/min"));
    m_power = spin(0, 100, 1, 1, QStringLiteral(" %"));
    m_passes = new QSpinBox;
    m_passes->setRange(1, 100);
    m_passes->setKeyboardTracking(false);
    m_form->addRow(new QLabel, m_name);
    m_form->addRow(new QLabel, m_color);
    m_form->addRow(new QLabel, m_operation);
    m_form->addRow(new QLabel, m_speed);
    m_form->addRow(new QLabel, m_power);
    m_form->addRow(new QLabel, m_passes);
    layout->addLayout(m_form);

    m_pages = new QStackedWidget;
    auto *imagePage = new QWidget;
    m_imageForm = new QFormLayout(imagePage);
    m_imageForm->setContentsMargins(0, 0, 0, 0);
    m_imageMode = new QComboBox;
    m_imageMode->addItems({QString(), QString(), QString()});
    m_dither = new QComboBox;
    m_dither->addItems({QStringLiteral("Floyd-Steinberg"), QStringLiteral("Atkinson"), QStringLiteral("Jarvis"),
                        QStringLiteral("Stucki"), QStringLiteral("Sierra"), QStringLiteral("Bayer 4x4")});
    m_threshold = new QSpinBox;
    m_threshold->setRange(0, 255);
    m_threshold->setKeyboardTracking(false);
    m_brightness = spin(-100, 100, 0, 5);
    m_contrast = spin(-100, 100, 0, 5);
    m_gamma = spin(0.1, 5, 2, 0.1);
    m_minPower = spin(0, 100, 1, 1, QStringLiteral(" %"));
    m_invert = new QCheckBox;
    m_imageInterval = spin(0.01, 5, 3, 0.01, QStringLiteral(" mm"));
    m_imageOverscan = spin(0, 50, 1, 0.5, QStringLiteral(" mm"));
    m_imageBidirectional = new QCheckBox;
    m_reverseOffset = spin(-5, 5, 3, 0.01, QStringLiteral(" mm"));
    m_imageForm->addRow(new QLabel, m_imageMode);
    m_imageForm->addRow(new QLabel, m_dither);
    m_imageForm->addRow(new QLabel, m_threshold);
    m_imageForm->addRow(new QLabel, m_brightness);
    m_imageForm->addRow(new QLabel, m_contrast);
    m_imageForm->addRow(new QLabel, m_gamma);
    m_imageForm->addRow(new QLabel, m_minPower);
    m_imageForm->addRow(new QLabel, m_invert);
    m_imageForm->addRow(new QLabel, m_imageInterval);
    m_imageForm->addRow(new QLabel, m_imageOverscan);
    m_imageForm->addRow(new QLabel, m_imageBidirectional);
    m_imageForm->addRow(new QLabel, m_reverseOffset);
    m_pages->addWidget(imagePage);

    auto *fillPage = new QWidget;
    m_fillForm = new QFormLayout(fillPage);
    m_fillForm->setContentsMargins(0, 0, 0, 0);
    m_fillInterval = spin(0.01, 5, 3, 0.01, QStringLiteral(" mm"));
    m_angle = spin(-180, 180, 1, 15, QStringLiteral("\u00b0"));
    m_crossHatch = new QCheckBox;
    m_fillOverscan = spin(0, 50, 1, 0.5, QStringLiteral(" mm"));
    m_fillBidirectional = new QCheckBox;
    m_fillForm->addRow(new QLabel, m_fillInterval);
    m_fillForm->addRow(new QLabel, m_angle);
    m_fillForm->addRow(new QLabel, m_crossHatch);
    m_fillForm->addRow(new QLabel, m_fillOverscan);
    m_fillForm->addRow(new QLabel, m_fillBidirectional);
    m_pages->addWidget(fillPage);

    auto *linePage = new QWidget;
    m_lineForm = new QFormLayout(linePage);
    m_lineForm->setContentsMargins(0, 0, 0, 0);
    m_kerfSide = new QComboBox;
    m_kerfSide->addItems({QString(), QString(), QString()});
    m_kerf = spin(0, 5, 3, 0.01, QStringLiteral(" mm"));
    m_lineForm->addRow(new QLabel, m_kerfSide);
    m_lineForm->addRow(new QLabel, m_kerf);
    m_pages->addWidget(linePage);
    layout->addWidget(m_pages);

    // The list.
    connect(m_list, &QListWidget::currentRowChanged, this, [this](int row) {
        if (m_updating || row < 0)
            return;
        m_current = row;
        showLayer();
        emit currentLayerChanged(row);
    });
    connect(m_list, &QListWidget::itemChanged, this, [this](QListWidgetItem *item) {
        if (m_updating)
            return;
        const int row = m_list->row(item);
        const bool on = item->checkState() == Qt::Checked;
        m_model->change(tr("Switch layer"), [row, on](JobDocument &doc) {
            if (row >= 0 && row < int(doc.layers.size()))
                doc.layers[size_t(row)].enabled = on;
        });
    });
    // A drag inside the list moves rows; the new order is read once the drop is over.
    auto scheduleOrderCheck = [this] {
        if (m_updating || m_orderCheckPending)
            return;
        m_orderCheckPending = true;
        QTimer::singleShot(0, this, &LayerPanel::readListOrder);
    };
    connect(m_list->model(), &QAbstractItemModel::rowsMoved, this, scheduleOrderCheck);
    connect(m_list->model(), &QAbstractItemModel::rowsRemoved, this, scheduleOrderCheck);
    connect(m_list->model(), &QAbstractItemModel::rowsInserted, this, scheduleOrderCheck);

    connect(m_add, &QToolButton::clicked, this, [this] {
        const Operation operation = m_current >= 0 && m_current < int(m_model->document().layers.size())
                                        ? m_model->document().layers[size_t(m_current)].operation
                                        : Operation::Image;
        int added = -1;
        m_model->change(tr("Add layer"), [&](JobDocument &doc) { added = JobEdits::addLayer(&doc, operation); });
        setCurrentLayer(added);
    });
    connect(m_remove, &QToolButton::clicked, this, [this] {
        const int index = m_current;
        m_model->change(tr("Remove layer"), [index](JobDocument &doc) { JobEdits::removeLayer(&doc, index); });
    });
    connect(m_up, &QToolButton::clicked, this, [this] { moveCurrent(-1); });
    connect(m_down, &QToolButton::clicked, this, [this] { moveCurrent(1); });

    // The layer's settings.
    connect(m_name, &QLineEdit::editingFinished, this, [this] {
        const QString name = m_name->text();
        editLayer([name](JobLayer &l) { l.name = name; });
    });
    connect(m_color, &QPushButton::clicked, this, [this] {
        if (m_current < 0 || m_current >= int(m_model->document().layers.size()))
            return;
        const QColor chosen = m_chooseColor(QColor(m_model->document().layers[size_t(m_current)].color));
        if (chosen.isValid())
            editLayer([chosen](JobLayer &l) { l.color = chosen.name(); });
    });
    connect(m_operation, qOverload<int>(&QComboBox::currentIndexChanged), this,
            [this](int i) { editLayer([i](JobLayer &l) { l.operation = Operation(i); }); });
    connect(m_speed, &QDoubleSpinBox::editingFinished, this,
            [this] { editLayer([v = m_speed->value()](JobLayer &l) { l.speed = v; }); });
    connect(m_power, &QDoubleSpinBox::editingFinished, this,
            [this] { editLayer([v = m_power->value()](JobLayer &l) { l.power = v; }); });
    connect(m_passes, &QSpinBox::editingFinished, this,
            [this] { editLayer([v = m_passes->value()](JobLayer &l) { l.passes = v; }); });

    auto onSpin = [this](QDoubleSpinBox *box, std::function<void(JobLayer &, double)> set) {
        connect(box, &QDoubleSpinBox::editingFinished, this,
                [this, box, set] { editLayer([&](JobLayer &l) { set(l, box->value()); }); });
    };
    auto onCheck = [this](QCheckBox *box, std::function<void(JobLayer &, bool)> set) {
        connect(box, &QCheckBox::toggled, this, [this, set](bool on) { editLayer([&](JobLayer &l) { set(l, on); }); });
    };
    connect(m_imageMode, qOverload<int>(&QComboBox::currentIndexChanged), this,
            [this](int i) { editLayer([i](JobLayer &l) { l.image.mode = ImageMode(i); }); });
    connect(m_dither, qOverload<int>(&QComboBox::currentIndexChanged), this,
            [this](int i) { editLayer([i](JobLayer &l) { l.image.dither = DitherKernel(i); }); });
    connect(m_threshold, &QSpinBox::editingFinished, this,
            [this] { editLayer([v = m_threshold->value()](JobLayer &l) { l.image.threshold = v; }); });
    onSpin(m_brightness, [](JobLayer &l, double v) { l.image.brightness = v; });
    onSpin(m_contrast, [](JobLayer &l, double v) { l.image.contrast = v; });
    onSpin(m_gamma, [](JobLayer &l, double v) { l.image.gamma = v; });
    onSpin(m_minPower, [](JobLayer &l, double v) { l.image.minPower = v; });
    onCheck(m_invert, [](JobLayer &l, bool v) { l.image.invert = v; });
    onSpin(m_imageInterval, [](JobLayer &l, double v) { l.image.interval = v; });
    onSpin(m_imageOverscan, [](JobLayer &l, double v) { l.image.overscan = v; });
    onCheck(m_imageBidirectional, [](JobLayer &l, bool v) { l.image.bidirectional = v; });
    onSpin(m_reverseOffset, [](JobLayer &l, double v) { l.image.reverseOffset = v; });
    onSpin(m_fillInterval, [](JobLayer &l, double v) { l.fill.interval = v; });
    onSpin(m_angle, [](JobLayer &l, double v) { l.fill.angle = v; });
    onCheck(m_crossHatch, [](JobLayer &l, bool v) { l.fill.crossHatch = v; });
    onSpin(m_fillOverscan, [](JobLayer &l, double v) { l.fill.overscan = v; });
    onCheck(m_fillBidirectional, [](JobLayer &l, bool v) { l.fill.bidirectional = v; });
    connect(m_kerfSide, qOverload<int>(&QComboBox::currentIndexChanged), this,
            [this](int i) { editLayer([i](JobLayer &l) { l.line.kerfSide = KerfSide(i); }); });
    onSpin(m_kerf, [](JobLayer &l, double v) { l.line.kerf = v; });
}

void LayerPanel::retranslateUi()
{
    m_add->setToolTip(tr("Add a layer"));
    m_remove->setToolTip(tr("Remove the layer and its items"));
    m_up->setToolTip(tr("Burn earlier"));
    m_down->setToolTip(tr("Burn later"));
    setLabel(m_form, m_name, tr("Name"));
    setLabel(m_form, m_color, tr("Colour"));
    setLabel(m_form, m_operation, tr("Operation"));
    setLabel(m_form, m_speed, tr("Speed"));
    setLabel(m_form, m_power, tr("Power"));
    setLabel(m_form, m_passes, tr("Passes"));
    m_operation->setItemText(0, tr("Image"));
    m_operation->setItemText(1, tr("Fill"));
    m_operation->setItemText(2, tr("Line"));
    setLabel(m_imageForm, m_imageMode, tr("Mode"));
    m_imageMode->setItemText(0, tr("Threshold"));
    m_imageMode->setItemText(1, tr("Dither"));
    m_imageMode->setItemText(2, tr("Grayscale"));
    setLabel(m_imageForm, m_dither, tr("Dither"));
    setLabel(m_imageForm, m_threshold, tr("Threshold"));
    setLabel(m_imageForm, m_brightness, tr("Brightness"));
    setLabel(m_imageForm, m_contrast, tr("Contrast"));
    setLabel(m_imageForm, m_gamma, tr("Gamma"));
    setLabel(m_imageForm, m_minPower, tr("Minimum power"));
    setLabel(m_imageForm, m_invert, tr("Invert"));
    setLabel(m_imageForm, m_imageInterval, tr("Line interval"));
    setLabel(m_imageForm, m_imageOverscan, tr("Overscan"));
    setLabel(m_imageForm, m_imageBidirectional, tr("Bidirectional"));
    setLabel(m_imageForm, m_reverseOffset, tr("Reverse-row offset"));
    setLabel(m_fillForm, m_fillInterval, tr("Hatch interval"));
    setLabel(m_fillForm, m_angle, tr("Angle"));
    setLabel(m_fillForm, m_crossHatch, tr("Cross-hatch"));
    setLabel(m_fillForm, m_fillOverscan, tr("Overscan"));
    setLabel(m_fillForm, m_fillBidirectional, tr("Bidirectional"));
    setLabel(m_lineForm, m_kerfSide, tr("Kerf side"));
    m_kerfSide->setItemText(0, tr("On the line"));
    m_kerfSide->setItemText(1, tr("Inside"));
    m_kerfSide->setItemText(2, tr("Outside"));
    setLabel(m_lineForm, m_kerf, tr("Kerf"));
    m_applyPreset->setText(tr("Apply"));
    m_applyPreset->setToolTip(tr("Give the layer the preset's operation, speed, power, passes and interval"));
    m_savePreset->setText(tr("Save as preset…"));
    fillPresets();
    refresh();
}

void LayerPanel::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslateUi();
    QWidget::changeEvent(event);
}

QString LayerPanel::summary(const JobLayer &layer)
{
    const QString operation = layer.operation == Operation::Image  ? tr("Image")
                              : layer.operation == Operation::Fill ? tr("Fill")
                                                                   : tr("Line");
    return tr("%1 \u2014 %2, %3 mm/min, %4 %, %5\u00d7")
        .arg(layer.name, operation)
        .arg(layer.speed)
        .arg(layer.power)
        .arg(layer.passes);
}

void LayerPanel::setCurrentLayer(int index)
{
    const int count = int(m_model->document().layers.size());
    m_current = count == 0 ? -1 : std::max(0, std::min(index, count - 1));
    refresh();
    emit currentLayerChanged(m_current);
}

void LayerPanel::refresh()
{
    const JobDocument &doc = m_model->document();
    const int count = int(doc.layers.size());
    if (m_current >= count)
        m_current = count - 1;
    if (m_current < 0 && count > 0)
        m_current = 0;
    m_updating = true;
    m_list->clear();
    for (int i = 0; i < count; ++i) {
        const JobLayer &layer = doc.layers[size_t(i)];
        auto *item = new QListWidgetItem(swatch(layer.color), summary(layer));
        item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsUserCheckable | Qt::ItemIsDragEnabled);
        item->setCheckState(layer.enabled ? Qt::Checked : Qt::Unchecked);
        item->setData(Qt::UserRole, i);
        m_list->addItem(item);
    }
    m_list->setCurrentRow(m_current);
    m_updating = false;
    showLayer();
}

void LayerPanel::showLayer()
{
    const JobDocument &doc = m_model->document();
    const bool has = m_current >= 0 && m_current < int(doc.layers.size());
    for (QWidget *w : std::initializer_list<QWidget *>{m_name, m_color, m_operation, m_speed, m_power, m_passes,
                                                       m_pages, m_remove, m_up, m_down, m_applyPreset, m_savePreset})
        w->setEnabled(has);
    if (!has)
        return;
    const JobLayer &l = doc.layers[size_t(m_current)];
    m_updating = true;
    m_name->setText(l.name);
    m_color->setIcon(swatch(l.color));
    m_color->setText(l.color);
    m_operation->setCurrentIndex(int(l.operation));
    m_speed->setValue(l.speed);
    m_power->setValue(l.power);
    m_passes->setValue(l.passes);
    m_pages->setCurrentIndex(int(l.operation));
    m_imageMode->setCurrentIndex(int(l.image.mode));
    m_dither->setCurrentIndex(int(l.image.dither));
    m_dither->setEnabled(l.image.mode == ImageMode::Dither);
    m_threshold->setValue(l.image.threshold);
    m_threshold->setEnabled(l.image.mode == ImageMode::Threshold);
    m_brightness->setValue(l.image.brightness);
    m_contrast->setValue(l.image.contrast);
    m_gamma->setValue(l.image.gamma);
    m_minPower->setValue(l.image.minPower);
    m_minPower->setEnabled(l.image.mode == ImageMode::Grayscale);
    m_invert->setChecked(l.image.invert);
    m_imageInterval->setValue(l.image.interval);
    m_imageOverscan->setValue(l.image.overscan);
    m_imageBidirectional->setChecked(l.image.bidirectional);
    m_reverseOffset->setValue(l.image.reverseOffset);
    m_fillInterval->setValue(l.fill.interval);
    m_angle->setValue(l.fill.angle);
    m_crossHatch->setChecked(l.fill.crossHatch);
    m_fillOverscan->setValue(l.fill.overscan);
    m_fillBidirectional->setChecked(l.fill.bidirectional);
    m_kerfSide->setCurrentIndex(int(l.line.kerfSide));
    m_kerf->setValue(l.line.kerf);
    m_up->setEnabled(m_current > 0);
    m_down->setEnabled(m_current + 1 < int(doc.layers.size()));
    m_updating = false;
}

void LayerPanel::editLayer(const std::function<void(JobLayer &)> &edit)
{
    if (m_updating)
        return;
    const int index = m_current;
    m_model->change(tr("Layer settings"), [&](JobDocument &doc) {
        if (index >= 0 && index < int(doc.layers.size()))
            edit(doc.layers[size_t(index)]);
    });
}

QString LayerPanel::language()
{
    //: The language code of this catalogue: zh, en or ko. It picks the language of the preset names.
    const QString code = tr("en");
    return code == QLatin1String("zh") || code == QLatin1String("ko") ? code : QStringLiteral("en");
}

void LayerPanel::fillPresets()
{
    const QString lang = language();
    const int current = m_preset->currentIndex();
    m_preset->clear();
    for (const JobPreset &p : m_presets.presets)
        m_preset->addItem(p.name(lang));
    m_preset->setCurrentIndex(std::max(0, std::min(current, m_preset->count() - 1)));
}

bool LayerPanel::applyPreset(int index)
{
    if (index < 0 || index >= int(m_presets.presets.size()))
        return false;
    const JobPreset preset = m_presets.presets[size_t(index)];
    const int layer = m_current;
    return m_model->change(tr("Apply preset"), [&](JobDocument &doc) {
        if (layer >= 0 && layer < int(doc.layers.size()))
            preset.applyTo(&doc.layers[size_t(layer)]);
    });
}

bool LayerPanel::saveLayerAsPreset()
{
    if (m_current < 0 || m_current >= int(m_model->document().layers.size()))
        return false;
    const JobLayer &layer = m_model->document().layers[size_t(m_current)];
    const QString name = m_askName(layer.name).trimmed();
    if (name.isEmpty())
        return false;
    JobPresetLibrary updated = m_presets;
    updated.presets.push_back(JobPreset::fromLayer(layer, name));
    if (!updated.save())
        return false;
    m_presets = updated;
    fillPresets();
    m_preset->setCurrentIndex(m_preset->count() - 1);
    return true;
}

void LayerPanel::moveCurrent(int step)
{
    const int from = m_current, to = m_current + step;
    if (from < 0 || to < 0 || to >= int(m_model->document().layers.size()))
        return;
    m_current = to;
    if (!m_model->change(tr("Reorder layers"), [&](JobDocument &doc) { JobEdits::moveLayer(&doc, from, to); }))
        m_current = from;
    emit currentLayerChanged(m_current);
}

void LayerPanel::readListOrder()
{
    m_orderCheckPending = false;
    std::vector<int> order;
    int current = -1;
    for (int row = 0; row < m_list->count(); ++row) {
        const int old = m_list->item(row)->data(Qt::UserRole).toInt();
        order.push_back(old);
        if (old == m_current)
            current = row;
    }
    if (int(order.size()) != int(m_model->document().layers.size())) {
        refresh();
        return;
    }
    const int before = m_current;
    if (current >= 0)
        m_current = current;
    if (!m_model->change(tr("Reorder layers"), [&](JobDocument &doc) { JobEdits::reorderLayers(&doc, order); })) {
        m_current = before;
        refresh();
    }
    emit currentLayerChanged(m_current);
}
