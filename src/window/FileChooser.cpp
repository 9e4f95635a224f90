#include "window/FileChooser.h"

#include <QFileDialog>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace window {

namespace {

using What = platform::ChooserRequest::What;

QFileDialog::FileMode modeOf(What what)
{
    switch (what) {
    case What::Folder:
        return QFileDialog::Directory;
    case What::Files:
        return QFileDialog::ExistingFiles;
    case What::OneFile:
    case What::Application:
        break;
    }
    return QFileDialog::ExistingFile;
}

/// A bundle is a folder to the file system.
QString folderOf(const QString &path)
{
    const QFileInfo info(path);
    return info.isDir() && !info.isBundle() ? path : info.absolutePath();
}

} // namespace

void FileChooser::choose(const platform::ChooserRequest &request, Chosen chosen)
{
    auto *dialog = new QFileDialog(m_window, request.title);
    dialog->setObjectName(u"FileChooser"_s);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setFileMode(modeOf(request.what));
    dialog->setOption(QFileDialog::ShowDirsOnly, request.what == What::Folder);
    if (!request.startPath.isEmpty())
        dialog->setDirectory(folderOf(request.startPath));
    else if (!m_lastFolder.isEmpty())
        dialog->setDirectory(m_lastFolder);
    QObject::connect(dialog, &QFileDialog::accepted, dialog, [this, dialog, chosen = std::move(chosen)] {
        const QList<QUrl> files = dialog->selectedUrls();
        if (files.isEmpty())
            return;
        m_lastFolder = folderOf(files.constFirst().toLocalFile());
        chosen(files);
    });
    dialog->open();
}

} // namespace window
