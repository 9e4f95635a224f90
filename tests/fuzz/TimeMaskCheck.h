#pragma once

#include "prefs/TimeMask.h"

#include <QByteArray>
#include <QStringList>

#include <algorithm>
#include <cstdlib>

namespace fuzz {

/// Plays a script of edits on a time mask and compares each answer with the rules in other words: here a
/// time is a row of digits, and separators are put between them at the end. The script's first line is
/// "s" or "l" for the short or the long mask and the text to begin with. Each further line is an edit: a
/// character for the place and one for how many characters go ('0' is 0, '1' is 1, ... ':' is 10), then
/// what comes; or "!", a character for the caret, and a new text that has nothing to do with the old one.
class TimeMaskCheck final
{
public:
    /// What is wrong, null when all is well.
    static QString offenceOf(const QByteArray &script)
    {
        const QList<QByteArray> lines = script.split('\n');
        TimeMaskCheck check(lines.constFirst().startsWith('l'));
        check.m_text = check.m_mask.fitted(QString::fromUtf8(lines.constFirst().mid(1)));
        check.require(check.hasShape(), "begins without its shape");
        for (const QByteArray &line : lines.mid(1))
            check.play(line);
        return check.m_offence;
    }

private:
    struct Digits
    {
        QString row;
        qsizetype place = 0;
    };

    explicit TimeMaskCheck(bool isLong)
        : m_isLong(isLong)
        , m_mask(isLong ? prefs::TimeMask::Precision::Milliseconds : prefs::TimeMask::Precision::Seconds)
    {
    }

    void play(const QByteArray &line)
    {
        if (line.size() < 2)
            return;
        if (line.startsWith('!'))
            return answer(QString::fromUtf8(line.mid(2)), line.at(1) - '8', [](const auto &) {});
        const qsizetype at = std::abs(line.at(0) - '0') % (m_text.size() + 1);
        const qsizetype removed = std::abs(line.at(1) - '0') % (m_text.size() - at + 1);
        change(at, removed, QString::fromUtf8(line.mid(2)));
    }

    void change(qsizetype at, qsizetype removed, const QString &inserted)
    {
        const QString old = m_text;
        answer(old.left(at) + inserted + old.mid(at + removed), at + inserted.size(),
               [&](const prefs::FieldEdit &edit) {
                   const qsizetype same = sameHead(inserted, old.mid(at, removed));
                   judge(edit, old, at + same, removed - same, inserted.mid(same));
               });
    }

    template <typename Judge>
    void answer(const QString &newText, qsizetype caret, Judge judgeIt)
    {
        const prefs::FieldEdit edit = m_mask.edited(m_text, newText, caret);
        require(!edit.beep || edit.text == m_text, "changes what it refuses");
        m_text = edit.text;
        require(hasShape(), "loses its shape");
        require(edit.caret >= 0 && edit.caret <= m_text.size(), "has its caret outside");
        judgeIt(edit);
    }

    void judge(const prefs::FieldEdit &edit, const QString &old, qsizetype at, qsizetype removed,
               const QString &inserted)
    {
        const bool bad =
            std::any_of(inserted.begin(), inserted.end(), [](QChar c) { return c < u'0' || c > u':'; });
        require(edit.beep == bad, "refuses or takes what it should not");
        if (bad)
            return require(edit.caret == at, "puts the caret back elsewhere");
        const qsizetype end = std::max(at + removed, edit.caret);
        require(m_text.left(at) == old.left(at) && m_text.mid(end) == old.mid(end),
                "changes more than asked");
        const Digits expected = typedOver(old, at, removed, inserted);
        require(rowOf(m_text) == expected.row, "shows other digits");
        require(digitsBefore(edit.caret) == expected.place, "has its caret elsewhere");
        require(!inserted.isEmpty() || edit.caret == at, "moves the caret when it deletes");
    }

    Digits typedOver(const QString &old, qsizetype at, qsizetype removed, const QString &inserted) const
    {
        Digits digits{rowOf(old), digitsBefore(at)};
        for (qsizetype i = digits.place; i < digitsBefore(at + removed); ++i)
            digits.row[i] = u'0';
        for (const QChar c : inserted) {
            if (c == u':')
                digits.place = groupFrom(digits.place);
            else if (digits.place < digits.row.size())
                digits.row[digits.place++] = c;
        }
        return digits;
    }

    /// Where the first group begins that does not begin before the place; the place itself in the last one.
    qsizetype groupFrom(qsizetype place) const
    {
        const qsizetype group = (place + 1) / 2 * 2;
        return group <= (m_isLong ? 6 : 4) ? group : place;
    }

    bool hasShape() const
    {
        QString shape = m_text;
        std::replace_if(
            shape.begin(), shape.end(), [](QChar c) { return c >= u'0' && c <= u'9'; }, u'#');
        return shape == QLatin1String(m_isLong ? "##:##:##,###" : "##:##:##");
    }

    static QString rowOf(QString text) { return text.remove(u':').remove(u','); }
    static qsizetype digitsBefore(qsizetype place) { return place - (place > 2) - (place > 5) - (place > 8); }

    static qsizetype sameHead(const QString &one, const QString &other)
    {
        return std::mismatch(one.begin(), one.end(), other.begin(), other.end()).first - one.begin();
    }

    void require(bool holds, const char *offence)
    {
        if (!holds && m_offence.isNull())
            m_offence = m_text + QLatin1Char(' ') + QLatin1String(offence);
    }

    bool m_isLong;
    prefs::TimeMask m_mask;
    QString m_text;
    QString m_offence;
};

} // namespace fuzz
