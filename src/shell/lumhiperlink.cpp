#include "lumhiperlink.h"

#include <QKeyEvent>

lumHiperLink::lumHiperLink(const QString &nombre, QWidget *padre)
    : QToolButton(padre)
{
    setObjectName(nombre);
    setAutoRaise(true);
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::StrongFocus);
    setToolButtonStyle(Qt::ToolButtonTextOnly);
    setStyleSheet(QStringLiteral(
        "lumHiperLink { color: white; font-weight: bold; border: none; padding: 2px 8px; background: transparent; }"
        "lumHiperLink:focus { border: 1px dotted white; }"
        "lumHiperLink:disabled { color: #c8ceda; font-weight: normal; }"));
}

void lumHiperLink::keyPressEvent(QKeyEvent *evento)
{
    if (evento->key() == Qt::Key_Return || evento->key() == Qt::Key_Enter) {
        click();
        return;
    }
    QToolButton::keyPressEvent(evento);
}

void lumHiperLink::enterEvent(QEnterEvent *evento)
{
    subrayar(true);
    QToolButton::enterEvent(evento);
}

void lumHiperLink::leaveEvent(QEvent *evento)
{
    subrayar(false);
    QToolButton::leaveEvent(evento);
}

void lumHiperLink::subrayar(bool si)
{
    QFont f = font();
    f.setUnderline(si && isEnabled());
    setFont(f);
}
