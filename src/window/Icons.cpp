#include "window/Icons.h"

#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

using namespace Qt::StringLiterals;

namespace window {

namespace {

QPixmap drawn(const QString &name, const QColor &ink, const QSize &pixels)
{
    const QString key = u"%1/%2/%3x%4"_s.arg(name, ink.name()).arg(pixels.width()).arg(pixels.height());
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap))
        return pixmap;
    QFile file(u":/icons/%1.svg"_s.arg(name));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QSvgRenderer renderer(file.readAll().replace("#000000", ink.name().toLatin1()));
    pixmap = QPixmap(pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    renderer.render(&painter);
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

class Drawing final : public QIconEngine
{
public:
    Drawing(const QString &name, Role role)
        : m_name(name)
        , m_role(role)
    {
    }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State /*state*/) override
    {
        const bool isOff = mode == QIcon::Disabled;
        paintIcon(*painter, rect, m_name, color(isOff ? Role::Off : m_role));
    }
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State /*state*/) override
    {
        return drawn(m_name, color(mode == QIcon::Disabled ? Role::Off : m_role), size);
    }
    QIconEngine *clone() const override { return new Drawing(m_name, m_role); }

private:
    QString m_name;
    Role m_role;
};

} // namespace

QIcon icon(const QString &name, Role role)
{
    return QIcon(new Drawing(name, role));
}

void paintIcon(QPainter &painter, const QRect &rect, const QString &name, const QColor &ink)
{
    const double ratio = painter.device()->devicePixelRatioF();
    QPixmap pixmap = drawn(name, ink, (QSizeF(rect.size()) * ratio).toSize());
    pixmap.setDevicePixelRatio(ratio);
    painter.drawPixmap(rect.topLeft(), pixmap);
}

} // namespace window
