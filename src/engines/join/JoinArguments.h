#pragma once

#include "tools/OptionItem.h"

#include <QUrl>

namespace engines {

/// The tool that joins such files: "mkvmerge" for MKV files, "mp4box" for the MP4 family where it is
/// installed, else "ffmpeg".
QString joinerFor(const QList<QUrl> &files, bool mp4boxIsInstalled);

/// The list file of ffmpeg's concat reader: one line a file. In the form that is meant an apostrophe in a
/// path stands as it is; ffmpeg reads only the launched form right.
QString concatListMeant(const QList<QUrl> &files);
QString concatListLaunched(const QList<QUrl> &files);

tools::OptionList concatArguments(const QUrl &listFile, const QUrl &output);
/// The launch form: absolute paths are let in, and every stream is taken.
tools::OptionList concatLaunchForm(const tools::OptionList &meant);

/// A copy of a file in which times are counted in other units; a timescale that is empty is left to ffmpeg.
tools::OptionList retimeArguments(const QUrl &file, const QString &timescale, const QUrl &output);

tools::OptionList mp4boxJoinArguments(const QList<QUrl> &files, const QUrl &folder, const QUrl &output);

} // namespace engines
