#pragma once

#include <QStringList>

namespace cli {

/// The one of the words that was most likely meant by a word that is none of them; a null text when none is
/// near.
QString nearestWord(const QString &typed, const QStringList &words);

/// " Did you mean --device?", to be put behind a sentence; empty where no word is near. The mark stands in
/// front of the word.
QString didYouMean(const QString &typed, const QStringList &words, const QString &mark = {});

} // namespace cli
