#include "menusdocumento.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QWidget>

#include <utility>

MenusDocumento::MenusDocumento(QWidget *dueno)
{
    auto menu = [&](const char *nombre, const QString &caption) {
        auto *m = new QMenu(caption, dueno);
        m->setObjectName(QString::fromLatin1(nombre));
        return m;
    };

    MnuView = menu("MnuView", QStringLiteral("Vista"));
    for (int i = 0; i < 5; ++i) {
        QAction *a = agregar(MnuView, "MnuVieitem", "Personalizada", 1052 + i);
        a->setObjectName(QStringLiteral("MnuVieitem%1").arg(i));
        a->setCheckable(true);
        MnuVieitem.append(a);
    }
    MnuViewMes = menu("MnuViewMes", QString());
    m_textos.insert(MnuView->addMenu(MnuViewMes), 1057);
    for (int i = 0; i < 12; ++i) {
        QAction *a = MnuViewMes->addAction(QString());
        a->setObjectName(QStringLiteral("MnuViewMItem%1").arg(i));
        a->setCheckable(true);
        MnuViewMItem.append(a);
    }
    separador(MnuView, "MnuVieLinePapelera");
    agregar(MnuView, "MnuViePapelera", "Papelera", 1156);

    MnuEdicion = menu("MnuEdicion", QStringLiteral("Edicion"));
    agregar(MnuEdicion, "MnuEdiShowEstado", "")->setVisible(false);
    separador(MnuEdicion, "MnuEdiLineEstado")->setVisible(false);
    mostrarTecla(agregar(MnuEdicion, "MnuEdiNew", "Nuevo", 1020), QKeySequence(Qt::CTRL | Qt::Key_N));
    mostrarTecla(agregar(MnuEdicion, "MnuEdiDel", "Eliminar", 1021), QKeySequence(Qt::Key_Delete));
    mostrarTecla(agregar(MnuEdicion, "MnuEdiDelRow", "Eliminar Fila", 1022), QKeySequence(Qt::Key_Delete));
    agregar(MnuEdicion, "MnuEdiAddCta", "Agregar cuenta", 1100);
    separador(MnuEdicion, "MnuEdiLine");
    agregar(MnuEdicion, "MnuEdiSaveNormal", "Grabar", 1023);
    agregar(MnuEdicion, "MnuEdiCopy", "Copiar Asiento", 1024);
    agregar(MnuEdicion, "MnuEdiHide", "Ocultar Asiento", 1025);
    agregar(MnuEdicion, "MnuEdiHistorial", "Historial", 2000);
    mostrarTecla(agregar(MnuEdicion, "MnuEdiDeshacer", "Deshacer", 1159), QKeySequence::Undo);
    MnuEdiTC = menu("MnuEdiTC", QStringLiteral("Unificar Tasa de Cambio"));
    m_textos.insert(MnuEdicion->addMenu(MnuEdiTC), 2001);
    agregar(MnuEdiTC, "MnuUnificarTCCta", "a la moneda de la cuenta", 1101);
    agregar(MnuEdiTC, "MnuUnificarTCMC", "a la moneda de la contabilidad", 1102);
    agregar(MnuEdicion, "MnuEdiASI", "Convertir en Asiento SI", 1033);
    agregar(MnuEdicion, "MnuEdiAPA", "Asiento de primera apertura", 1031);
    agregar(MnuEdicion, "MnuEdiHacerFrecuente", "Hacer Asiento Frecuente", 1026);
    agregar(MnuEdicion, "MnuEdiAgendarAsiento", "Agendar", 1027);
    separador(MnuEdicion, "MnuEdiLineLibro");
    agregar(MnuEdicion, "MnuEdiLibro", "Libro", 1035);
    separador(MnuEdicion, "MnuEdiView");
    MnuEdiVer = menu("MnuEdiVer", QStringLiteral("orden"));
    m_textos.insert(MnuEdicion->addMenu(MnuEdiVer), 1047);
    agregar(MnuEdiVer, "MnuEdiVCod", "", 1048)->setCheckable(true);
    agregar(MnuEdiVer, "MnuEdiVIngreso", "Ingreso", 1049)->setCheckable(true);
    separador(MnuEdicion, "MnuEdiLinePrint");
    agregar(MnuEdicion, "MnuPriCnfgPage", "Configurar Página", 1028);
    mostrarTecla(agregar(MnuEdicion, "MnuPriPrint", "Imprimir", 1029), QKeySequence(Qt::CTRL | Qt::Key_P));
    mostrarTecla(agregar(MnuEdicion, "MnuPriPrevia", "Vista Previa", 1030), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_P));
    MnuExportar = menu("MnuExportar", QStringLiteral("Exportar"));
    m_textos.insert(MnuEdicion->addMenu(MnuExportar), 1113);
    agregar(MnuExportar, "MnuExpExcell", "Excell", 1114);
    agregar(MnuExportar, "MnuExpCSV", "Separado por coma", 1116);
    agregar(MnuExportar, "MnuExpHtml", "HTML", 1115);

    MnuSave = menu("MnuSave", QStringLiteral("Save"));
    agregar(MnuSave, "MnuSaveEnBorrador", "Los que están en Borrador", 2002);
    separador(MnuSave, "MnuSaveLine");
    agregar(MnuSave, "MnuSaveNewBorrador", "Pasar asientos nuevos como borrador", 2003)->setCheckable(true);

    MnuAsientoFrecuente = menu("MnuAsientoFrecuente", QStringLiteral("Asientos Frecuentes"));
    agregar(MnuAsientoFrecuente, "MnuAFrRegistrar", "Registrar", 1038);
    agregar(MnuAsientoFrecuente, "MnuAFrNew", "Crear Nuevo", 1039);
    separador(MnuAsientoFrecuente, "MnuAFrLine")->setVisible(false);

    // A popup's title is what a screen reader names it by: the caption of the link that opens it.
    for (const auto &[m, texto] : {std::pair{MnuView, 1014}, std::pair{MnuEdicion, 1010}, std::pair{MnuSave, 1012},
                                   std::pair{MnuAsientoFrecuente, 1011}})
        m_textos.insert(m->menuAction(), texto);
}

QAction *MenusDocumento::agregar(QMenu *menu, const char *nombre, const char *caption, int texto)
{
    QAction *a = menu->addAction(QString::fromUtf8(caption));
    a->setObjectName(QString::fromLatin1(nombre));
    m_acciones.insert(a->objectName(), a);
    if (texto)
        m_textos.insert(a, texto);
    return a;
}

void MenusDocumento::mostrarTecla(QAction *accion, const QKeySequence &tecla)
{
    // The document's own keys act; the item only shows its key, and takes it only while its
    // menu is open.
    accion->setShortcut(tecla);
    accion->setShortcutContext(Qt::WidgetShortcut);
    accion->setShortcutVisibleInContextMenu(true);
}

QAction *MenusDocumento::separador(QMenu *menu, const char *nombre)
{
    QAction *a = menu->addSeparator();
    a->setObjectName(QString::fromLatin1(nombre));
    m_acciones.insert(a->objectName(), a);
    return a;
}

void MenusDocumento::setCaption(QAction *a, const QString &texto)
{
    a->setText(texto);
}
