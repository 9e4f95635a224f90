#include "support/presets/FilterFixture.h"

#include "support/presets/PresetFixture.h"

using namespace Qt::StringLiterals;
using presets::FilterKind;

namespace support {

namespace {

FilterKind kindOf(int tag)
{
    return tag < 200 ? FilterKind::Audio : FilterKind::Subtitle;
}

} // namespace

const QStringList sounds{u"Audio Track Number|1|Any Language|Any Codec|Any Type"_s,
                         u"Tracks w/ Properties ...|2|English|aac|Stereo Only"_s,
                         u"All|3|German|ac3|Surround Only"_s};
const QStringList subtitles{u"Subtitle Track Number|1|Any Language|Any Codec"_s,
                            u"Tracks w/ Properties ...|2|English|srt"_s, u"None|3|German|ass"_s};
const QString allAudioButtons = u"101 102 103 192 193"_s;
const QString allSubtitleButtons = u"201 202 203 292 293"_s;

QVariantList filtersOf(const QStringList &texts)
{
    QVariantList filters;
    for (const QString &text : texts)
        filters.append(filterOf(text));
    return filters;
}

FilterFixture::FilterFixture(qsizetype audio, qsizetype subtitle)
    : preset(std::make_shared<KXPresetSelections>(window.file, window.controller))
{
    preset->initializeAsNewUserPreset();
    preset->setPAudioFilterArray(filtersOf(sounds.mid(0, audio)));
    preset->setPSubtitleFilterArray(filtersOf(subtitles.mid(0, subtitle)));
    editor.setPreset(preset);
}

const presets::RowButton &FilterFixture::button(int tag) const
{
    const presets::FilterRows &rows = editor.rows(kindOf(tag));
    return tag % 100 > 90 ? rows.addButton(tag % 10) : rows.filterButton(tag % 10);
}

QString FilterFixture::audio() const
{
    return textOf(preset->pAudioFilterArray());
}

QString FilterFixture::subtitle() const
{
    return textOf(preset->pSubtitleFilterArray());
}

QString FilterFixture::enabled(FilterKind kind) const
{
    const int base = kind == FilterKind::Audio ? 100 : 200;
    QStringList tags;
    for (const int number : {1, 2, 3, 92, 93}) {
        if (button(base + number).enabled)
            tags.append(QString::number(base + number));
    }
    return tags.join(u' ');
}

void FilterFixture::edit(int tag)
{
    editor.pointerEntered(tag);
    editor.editFilterPanel(tag);
}

void FilterFixture::setNumber(int tag, const QString &number)
{
    editor.setField(kindOf(tag), u"currentTrackNumber"_s, number);
}

} // namespace support
