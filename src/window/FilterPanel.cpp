#include "window/FilterPanel.h"

#include "presets/ChoiceLists.h"
#include "presets/FilterEditor.h"
#include "window/Controls.h"

#include <QKeyEvent>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;
using presets::FilterKind;

namespace window {

namespace {

constexpr int widthInCharacters = 32;
constexpr int firstSubtitleTag = 200;

/// A value that is not offered, as records may hold, is shown all the same.
void showValue(QComboBox *popup, const QString &value)
{
    popup->setPlaceholderText(value);
    popup->setCurrentIndex(popup->findText(value));
}

/// Fields that are only shown are there to be read: paler, but not as pale as those that are off.
QPalette readablePalette(const QPalette &palette)
{
    QPalette readable;
    for (const QPalette::ColorRole role : {QPalette::ButtonText, QPalette::Text}) {
        QColor color = palette.color(QPalette::Active, role);
        color.setAlphaF(0.7F);
        readable.setColor(QPalette::Disabled, role, color);
    }
    return readable;
}

} // namespace

FilterPanel::FilterPanel(FilterEditor &editor, FilterKind kind, QWidget *parent)
    : QFrame(parent)
    , m_editor(editor)
    , m_kind(kind)
{
    setFrameStyle(QFrame::StyledPanel);
    setAutoFillBackground(true);
    auto *layout = new QVBoxLayout(this);
    layout->setSpacing(2);
    const bool isAudio = kind == FilterKind::Audio;
    setObjectName(isAudio ? u"AudioFilterPanel"_s : u"SubtitleFilterPanel"_s);
    addField(isAudio ? "afUserTrackChoice" : "sfUserTrackChoice", u"currentTrackChoice"_s, tr("Choose"),
             isAudio ? presets::afTrackChoiceList() : presets::sfTrackChoiceList());
    addField(isAudio ? "afUserTrackNumber" : "sfUserTrackNumber", u"currentTrackNumber"_s, tr("Number"),
             presets::trackNumberList());
    addField(isAudio ? "afUserLanguage" : "sfUserLanguage", u"currentLanguage"_s, tr("Language"),
             presets::languageList());
    addField(isAudio ? "afUserCodec" : "sfUserCodec", u"currentCodec"_s, tr("Codec"),
             isAudio ? presets::afCodecList() : presets::sfCodecList());
    if (isAudio)
        addField("afUserChannels", u"currentChannels"_s, tr("Channels"), presets::afChannelsList());
    layout->addStretch(1);
    connect(&editor, &FilterEditor::changed, this, &FilterPanel::refresh);
    refresh();
}

void FilterPanel::addField(const char *name, const QString &word, const QString &title,
                           const QStringList &choices)
{
    auto *popup = named(new QComboBox, name, title);
    popup->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    popup->addItems(choices);
    m_fields.append({word, labelFor(popup, title), popup});
    layout()->addWidget(m_fields.constLast().label);
    layout()->addWidget(popup);
    connect(popup, &QComboBox::activated, this,
            [this, word, popup] { m_editor.setField(m_kind, word, popup->currentText()); });
}

bool FilterPanel::needs(const QString &word) const
{
    if (word == u"currentTrackChoice"_s)
        return true;
    const presets::FilterFields &fields = m_editor.fields(m_kind);
    return word == u"currentTrackNumber"_s ? fields.isByTrackNumber() : fields.isByProperties();
}

QSize FilterPanel::largestSize() const
{
    int height = contentsMargins().top() + contentsMargins().bottom() + layout()->contentsMargins().top() +
                 layout()->contentsMargins().bottom();
    for (const Field &field : m_fields) {
        if (field.word != u"currentTrackNumber"_s)
            height +=
                field.label->sizeHint().height() + field.popup->sizeHint().height() + 2 * layout()->spacing();
    }
    return {fontMetrics().averageCharWidth() * widthInCharacters,
            std::max(height, m_kind == FilterKind::Audio ? 260 : 202)};
}

/// The editor's height, unless this desktop's controls need more.
int FilterPanel::heightNow() const
{
    const int asked = m_kind == FilterKind::Audio ? m_editor.afPanelHeight() : m_editor.sfPanelHeight();
    return std::max(asked, layout()->totalMinimumSize().height());
}

void FilterPanel::takeFocusAfter(QWidget *button)
{
    QWidget *before = button;
    for (const Field &field : m_fields) {
        setTabOrder(before, field.popup);
        before = field.popup;
    }
    m_fields.constFirst().popup->setFocus(Qt::OtherFocusReason);
}

void FilterPanel::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && m_editor.rows(m_kind).edited() != 0)
        Q_EMIT leftByKey();
    else
        QFrame::keyPressEvent(event);
}

void FilterPanel::refresh()
{
    const int tag = m_editor.panelTag();
    const bool shown = tag != 0 && (tag > firstSubtitleTag) == (m_kind == FilterKind::Subtitle);
    const bool isEdited = m_editor.rows(m_kind).edited() != 0;
    const QVariantMap filter = m_editor.fields(m_kind).filter();
    for (const Field &field : m_fields) {
        showValue(field.popup, filter.value(field.word).toString());
        field.popup->setEnabled(isEdited);
        field.popup->setVisible(needs(field.word));
        field.label->setVisible(needs(field.word));
    }
    setPalette(readablePalette(palette()));
    layout()->activate();
    resize(largestSize().width(), heightNow());
    setVisible(shown);
}

} // namespace window
