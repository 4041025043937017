#pragma once

#include <QColor>
#include <QWidget>

class QHBoxLayout;
class QToolButton;

// The toolbar strip at the top of the document: a coloured band with a border line and a
// margin line under it, the document's links on the left and the help image on the right.
class lumTooMenu : public QWidget
{
    Q_OBJECT
public:
    explicit lumTooMenu(QWidget *padre = nullptr);

    QColor BackColor() const { return m_backColor; }
    void setBackColor(const QColor &c);
    QColor BorderColor() const { return m_borderColor; }
    void setBorderColor(const QColor &c);
    QColor MargenColor() const { return m_margenColor; }
    void setMargenColor(const QColor &c);
    bool HelpVisible() const;
    void setHelpVisible(bool visible);
    // The bar's spoken name and the help button's, in the document's language.
    void AsignarTextos(const QString &barra, const QString &ayuda);
    // Limit for the help image's left edge, in pixels from the strip's left.
    void setMaxLeftImg(int x);

    // "lum01", "lum02", "lum03" pick the edition's help picture; anything else leaves it.
    void SetPictureHelp(const QString &producto);
    int PictureHelp() const { return m_imagen; }

    void AgregarEnlace(QWidget *enlace);

    // Whether a colour was written since creation (the property store keeps only changes).
    bool Cambiado() const { return m_cambiado; }

signals:
    void HelpClick();

protected:
    void paintEvent(QPaintEvent *evento) override;
    void resizeEvent(QResizeEvent *evento) override;

private:
    QColor m_backColor{123, 141, 168};
    QColor m_borderColor{179, 186, 206};
    QColor m_margenColor{255, 255, 255};
    QHBoxLayout *m_enlaces = nullptr;
    QToolButton *m_ayuda = nullptr;
    int m_maxLeftImg = 0;
    int m_imagen = 0;
    bool m_cambiado = false;
};
