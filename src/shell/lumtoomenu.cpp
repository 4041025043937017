#include "lumtoomenu.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QToolButton>

namespace {

// The help picture of an edition: a round "?" badge in the edition's colour.
QIcon imagenAyuda(int edicion)
{
    static const QColor colores[] = {QColor(0x2e, 0x7d, 0x32), QColor(0x15, 0x65, 0xc0), QColor(0xc6, 0x28, 0x28)};
    QPixmap px(22, 22);
    px.fill(Qt::transparent);
    QPainter p(&px);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(Qt::white, 1.5));
    p.setBrush(edicion >= 1 && edicion <= 3 ? colores[edicion - 1] : QColor(0x55, 0x5f, 0x70));
    p.drawEllipse(QRectF(1.5, 1.5, 19, 19));
    QFont f = p.font();
    f.setBold(true);
    f.setPixelSize(14);
    p.setFont(f);
    p.drawText(px.rect(), Qt::AlignCenter, QStringLiteral("?"));
    return QIcon(px);
}

} // namespace

lumTooMenu::lumTooMenu(QWidget *padre)
    : QWidget(padre)
{
    setObjectName(QStringLiteral("tmMenu"));
    setAutoFillBackground(false);
    setFixedHeight(32);

    auto *fila = new QHBoxLayout(this);
    fila->setContentsMargins(6, 2, 6, 4);
    fila->setSpacing(4);
    m_enlaces = new QHBoxLayout;
    m_enlaces->setSpacing(2);
    fila->addLayout(m_enlaces);
    fila->addStretch(1);

    m_ayuda = new QToolButton(this);
    m_ayuda->setObjectName(QStringLiteral("imgHelp"));
    m_ayuda->setAutoRaise(true);
    m_ayuda->setCursor(Qt::PointingHandCursor);
    m_ayuda->setIcon(imagenAyuda(0));
    m_ayuda->setIconSize(QSize(22, 22));
    m_ayuda->setVisible(false);
    fila->addWidget(m_ayuda);
    connect(m_ayuda, &QToolButton::clicked, this, &lumTooMenu::HelpClick);
}

void lumTooMenu::AsignarTextos(const QString &barra, const QString &ayuda)
{
    setAccessibleName(barra);
    m_ayuda->setAccessibleName(ayuda);
    m_ayuda->setToolTip(ayuda);
}

void lumTooMenu::setBackColor(const QColor &c)
{
    m_backColor = c;
    m_cambiado = true;
    update();
}

void lumTooMenu::setBorderColor(const QColor &c)
{
    m_borderColor = c;
    m_cambiado = true;
    update();
}

void lumTooMenu::setMargenColor(const QColor &c)
{
    m_margenColor = c;
    m_cambiado = true;
    update();
}

bool lumTooMenu::HelpVisible() const
{
    return !m_ayuda->isHidden();
}

void lumTooMenu::setHelpVisible(bool visible)
{
    m_ayuda->setVisible(visible);
}

void lumTooMenu::setMaxLeftImg(int x)
{
    m_maxLeftImg = x;
    updateGeometry();
}

void lumTooMenu::SetPictureHelp(const QString &producto)
{
    const QString p = producto.trimmed().toLower();
    int edicion = 0;
    if (p == QLatin1String("lum01"))
        edicion = 1;
    else if (p == QLatin1String("lum02"))
        edicion = 2;
    else if (p == QLatin1String("lum03"))
        edicion = 3;
    if (edicion == 0)
        return;
    m_imagen = edicion;
    m_ayuda->setIcon(imagenAyuda(edicion));
}

void lumTooMenu::AgregarEnlace(QWidget *enlace)
{
    m_enlaces->addWidget(enlace);
}

void lumTooMenu::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    const QRect r = rect();
    p.fillRect(r, m_backColor);
    p.setPen(m_margenColor);
    p.drawLine(r.left(), r.bottom() - 1, r.right(), r.bottom() - 1);
    p.setPen(m_borderColor);
    p.drawLine(r.left(), r.bottom(), r.right(), r.bottom());
}

void lumTooMenu::resizeEvent(QResizeEvent *evento)
{
    QWidget::resizeEvent(evento);
    // Keep the help image inside the limit the document gives, when it gives one.
    if (m_maxLeftImg > 0 && m_ayuda->isVisible() && m_ayuda->x() > m_maxLeftImg)
        m_ayuda->move(m_maxLeftImg, m_ayuda->y());
}
