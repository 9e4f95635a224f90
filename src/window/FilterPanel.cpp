#include "window/FilterPanel.h"

#include "presets/ChoiceLists.h"
#include "presets/FilterEditor.h"
#include "window/Controls.h"

#include <QFormLayout>
#include <QKeyEvent>

using namespace Qt::StringLiterals;
using presets::FilterKind;

namespace window {

namespace {

constexpr int labelWidth = 64;
constexpr int firstSubtitleTag = 200;

/// A value that is not offered, as records may hold, is shown all the same.
void showValue(QComboBox *popup, const QString &value)
{
    popup->setPlaceholderText(value);
    popup->setCurrentIndex(popup->findText(value));
}

} // namespace

FilterPanel::FilterPanel(FilterEditor &editor, FilterKind kind, QWidget *parent)
    : QFrame(parent)
    , m_editor(editor)
    , m_kind(kind)
{
    auto *form = new QFormLayout(this);
    form->setContentsMargins(0, 0, 0, 0);
    form->setSpacing(space::tiny);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    const bool isAudio = kind == FilterKind::Audio;
    setObjectName(isAudio ? u"AudioFilterPanel"_s : u"SubtitleFilterPanel"_s);
    addField(isAudio ? "afUserTrackChoice" : "sfUserTrackChoice", u"currentTrackChoice"_s, tr("Take"),
             isAudio ? presets::afTrackChoiceList() : presets::sfTrackChoiceList());
    addField(isAudio ? "afUserTrackNumber" : "sfUserTrackNumber", u"currentTrackNumber"_s, tr("number"),
             presets::trackNumberList());
    addField(isAudio ? "afUserLanguage" : "sfUserLanguage", u"currentLanguage"_s, tr("language"),
             presets::languageList());
    addField(isAudio ? "afUserCodec" : "sfUserCodec", u"currentCodec"_s, tr("codec"),
             isAudio ? presets::afCodecList() : presets::sfCodecList());
    if (isAudio)
        addField("afUserChannels", u"currentChannels"_s, tr("channels"), presets::afChannelsList());
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
    m_fields.constLast().label->setMinimumWidth(labelWidth);
    static_cast<QFormLayout *>(layout())->addRow(m_fields.constLast().label, popup); // NOLINT
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
    const bool isMine = tag != 0 && (tag > firstSubtitleTag) == (m_kind == FilterKind::Subtitle);
    const bool isEdited = m_editor.rows(m_kind).edited() != 0;
    const QVariantMap filter = m_editor.fields(m_kind).filter();
    for (const Field &field : m_fields) {
        showValue(field.popup, filter.value(field.word).toString());
        field.popup->setEnabled(isEdited);
        field.popup->setVisible(needs(field.word));
        field.label->setVisible(needs(field.word));
    }
    setVisible(isMine && isEdited);
}

} // namespace window
