#pragma once

#include <QToolButton>

// A hyperlink of the toolbar strip: white text that underlines under the mouse, reachable
// with Tab and run with Space or Enter; greyed when disabled. Tag keeps a short state
// text, as the document's links use it ("0" view, "-1" search result).
class lumHiperLink : public QToolButton
{
    Q_OBJECT
public:
    explicit lumHiperLink(const QString &nombre, QWidget *padre = nullptr);

    QString Tag;

protected:
    void keyPressEvent(QKeyEvent *evento) override;
    void enterEvent(QEnterEvent *evento) override;
    void leaveEvent(QEvent *evento) override;

private:
    void subrayar(bool si);
};
