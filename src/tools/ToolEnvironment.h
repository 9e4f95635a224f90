#pragma once

#include <QProcessEnvironment>
#include <QStringList>
#include <QUrl>

namespace tools {

class ToolPlaces;

/// The families of tools that want an environment of their own, told by the tool's lower-cased name.
enum class ToolFamily { Mkv, Ffmpeg, AtomicParsley, Other };

ToolFamily toolFamily(const QUrl &tool);
/// True when a text asks ffmpeg to draw subtitles, which then needs our fonts.
bool burnsSubtitles(const QStringList &arguments);

/// What a tool's process object gets on top of our environment.
QList<std::pair<QString, QString>> addedEnvironment(const QUrl &tool, const QStringList &arguments,
                                                    const ToolPlaces &places);
/// Our environment, that addition, and for the mkv tools a locale that exists on this machine: they
/// abort when the one in LANG is not installed, and translate their messages when it is another.
QProcessEnvironment processEnvironment(const QUrl &tool, const QStringList &arguments,
                                       const ToolPlaces &places);
/// Our environment for a shell line; the line exports the rest itself.
QProcessEnvironment shellEnvironment(const QUrl &tool);
/// The same with what the line exports, for a process that runs its words.
QProcessEnvironment lineEnvironment(const QUrl &tool, const QStringList &arguments, const ToolPlaces &places);

} // namespace tools
