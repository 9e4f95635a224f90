#include "window/WindowPlace.h"

#include "platform/DefaultsStore.h"
#include "window/LayoutRules.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace window {

namespace {

const QString layoutKey = u"windowLayout"_s;
constexpr qsizetype numbersOfPlace = 4;

} // namespace

WindowLayout restorePlace(QWidget &window, const platform::DefaultsStore &store)
{
    const QVariantMap stored = store.value(layoutKey).toMap();
    const QList<QVariant> numbers = stored.value(u"geometry"_s).toList();
    const WindowLayout layout{stored.value(u"openFiles"_s, true).toBool()};
    window.resize(wantedWindow.boundedTo(QGuiApplication::primaryScreen()->availableSize()));
    if (numbers.size() != numbersOfPlace)
        return layout;
    const QRect place(numbers.at(0).toInt(), numbers.at(1).toInt(), numbers.at(2).toInt(),
                      numbers.at(3).toInt());
    if (place.width() >= smallestWindow.width() && QGuiApplication::screenAt(place.center()) != nullptr) {
        window.resize(place.size());
        window.move(place.topLeft());
    }
    return layout;
}

void rememberPlace(const QWidget &window, const WindowLayout &layout, platform::DefaultsStore &store)
{
    const QRect place(window.pos(), window.size());
    const QVariantMap values{
        {u"geometry"_s, QVariantList{place.x(), place.y(), place.width(), place.height()}},
        {u"openFiles"_s, layout.showsOpenFiles}};
    store.store({{layoutKey, values}});
}

} // namespace window
