#pragma once

#include <QHash>
#include <QKeySequence>
#include <QString>
#include <QVector>

class QAction;
class QMenu;
class QWidget;

// The document's pop-up menus with every item named as the commands are known
// (MnuEdiNew, MnuSaveNewBorrador, ...). Items start with the form captions; AsignarTextos
// gives them their catalogue captions.
class MenusDocumento
{
public:
    explicit MenusDocumento(QWidget *dueno);

    QMenu *MnuView = nullptr;
    QMenu *MnuViewMes = nullptr;
    QMenu *MnuEdicion = nullptr;
    QMenu *MnuEdiTC = nullptr;
    QMenu *MnuEdiVer = nullptr;
    QMenu *MnuExportar = nullptr;
    QMenu *MnuSave = nullptr;
    QMenu *MnuAsientoFrecuente = nullptr;

    QVector<QAction *> MnuVieitem;    // view i: 0 new entries ... 4 last 15 days
    QVector<QAction *> MnuViewMItem;  // month i months before this one
    QVector<QAction *> MnuAFrRecientes; // the recent frequent entries, MFrID as data

    QAction *accion(const QString &nombre) const { return m_acciones.value(nombre); }
    // Sets every catalogue caption; resLoad gives the text of a catalogue number.
    template <typename F>
    void AsignarTextos(F resLoad);

private:
    QAction *agregar(QMenu *menu, const char *nombre, const char *caption, int texto = 0);
    QAction *separador(QMenu *menu, const char *nombre);
    static void mostrarTecla(QAction *accion, const QKeySequence &tecla);
    void setCaption(QAction *a, const QString &texto);

    QHash<QString, QAction *> m_acciones;
    QHash<QAction *, int> m_textos;
};

template <typename F>
void MenusDocumento::AsignarTextos(F resLoad)
{
    for (auto it = m_textos.cbegin(); it != m_textos.cend(); ++it)
        setCaption(it.key(), resLoad(it.value() - 1000));
}
