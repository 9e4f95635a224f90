#pragma once

#include <QUrl>

class KXPreferences;

namespace prefs {

/// Where results go: the folder that is set, or, when none is, the folder of the source. A location
/// without a path is none. Holds nothing but the folder that was set when it was made.
class SaveFolder final
{
public:
    explicit SaveFolder(const KXPreferences &preferences);
    explicit SaveFolder(const QUrl &chosen);

    QUrl forSource(const QUrl &source) const;
    /// Why the folder that is set can't be used; a null text when it can, or none is set.
    QString refusal() const;
    /// Whether results of the source can be written.
    bool takesResultsOf(const QUrl &source) const;

    /// What is said when they can't, in two sentences.
    static QString notWritable();
    static QString notWritableAdvice();

private:
    QUrl m_chosen;
};

} // namespace prefs
