#pragma once

#include "window/Controls.h"

namespace window {

/// What stands in the window's place while no film is open: where to drop files, and the three things that
/// people come for.
class EmptyState final : public QWidget
{
    Q_OBJECT

public:
    explicit EmptyState(const QString &title, bool hasCards, QWidget *parent = nullptr);

    /// While something is dragged over the window; a null text is the usual one.
    void showDrag(const QString &title);
    void focusOpen();

Q_SIGNALS:
    void openWanted();
    void editFilesWanted();
    void watchWanted();

private:
    QWidget *field();
    QWidget *card(const QString &iconName, const QString &head, const QString &text, const QString &link,
                  void (EmptyState::*wanted)());

    QString m_text;
    InkLabel *m_title;
    QPushButton *m_open = nullptr;
    class DashedField;
    DashedField *m_field = nullptr;
};

} // namespace window
