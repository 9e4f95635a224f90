#include "app/ResultName.h"

#include "engines/OutputBase.h"
#include "engines/ffmpeg/FfmpegArguments.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace app {

namespace {

QString extensionOfTarget(const KXSelection &selection)
{
    const QUrl named = engines::outputForBase(u"/a"_s, selection::outputKindFor(selection.theDevice()),
                                              selection.theDevice());
    return QFileInfo(named.toLocalFile()).suffix();
}

/// What other targets call theirs is no part of a name.
QString stemOf(const QString &name)
{
    static const QStringList extensions{u"m4v"_s, u"mp4"_s, u"mkv"_s, u"avi"_s};
    const QFileInfo file(name);
    return extensions.contains(file.suffix().toLower()) ? file.completeBaseName() : name;
}

} // namespace

bool canNameResult(const KXSelection &selection)
{
    return selection.videoTrackFileExtension() != u"h264"_s;
}

QString chosenResultName(const KXSelection &selection)
{
    const QString stem = stemOf(selection.outputName());
    return stem.isEmpty() ? QString() : stem + u'.' + extensionOfTarget(selection);
}

void chooseResultName(KXSelection &selection, const QString &typed)
{
    QString name = typed;
    name.removeIf([](QChar letter) { return letter == u'/' || letter.category() == QChar::Other_Control; });
    name = stemOf(name.trimmed());
    const bool isDots = std::all_of(name.begin(), name.end(), [](QChar letter) { return letter == u'.'; });
    const QString own = QFileInfo(selection.videoTrackFileName()).completeBaseName();
    selection.setOutputName(isDots || name == own ? QString() : name + u'.' + extensionOfTarget(selection));
}

} // namespace app
