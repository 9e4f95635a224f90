#include "prefs/KXWatchModeController.h"

using namespace Qt::StringLiterals;

QStringList KXWatchModeController::movieExtensions()
{
    return {u"mkv"_s, u"ogg"_s, u"mts"_s, u"ts"_s,  u"flv"_s,
            u"wmv"_s, u"mov"_s, u"mp4"_s, u"m4v"_s, u"avi"_s};
}
