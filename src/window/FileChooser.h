#pragma once

#include "platform/Chooser.h"

#include <QPointer>
#include <QWidget>

namespace window {

/// Asks with the desktop's own file dialogs, as sheets of a window. Owned by the program.
class FileChooser final : public platform::Chooser
{
public:
    void setParentWindow(QWidget *window) { m_window = window; }
    void choose(const platform::ChooserRequest &request, Chosen chosen) override;

private:
    QPointer<QWidget> m_window;
    QString m_lastFolder;
};

} // namespace window
