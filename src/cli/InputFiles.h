#pragma once

#include <QList>
#include <QString>
#include <QUrl>

namespace cli {

class Session;

/// A file that a command works on, and where its result is to lie.
struct InputFile
{
    QString path;
    bool isFound = false; ///< in a folder, rather than named
    QUrl outputFolder;    ///< empty where the save folder decides
};

/// The files that a command line names: with --recursive those in its folders too, in the order of their
/// names, of the kinds that are watched for. With --save-dir the tree of each folder is mirrored there. A
/// null text in the problem when all is well.
QList<InputFile> inputFiles(Session &session, QString &problem);

} // namespace cli
