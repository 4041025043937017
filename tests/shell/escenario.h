#pragma once

#include "comun/asientosdeprueba.h"
#include "comun/basesprueba.h"
#include "comun/busquedaexacta.h"
#include "comun/columna.h"
#include "comun/datosdeprueba.h"
#include "comun/hostdeprueba.h"
#include "comun/mensajesguionados.h"
#include "shell/idioma.h"
#include "shell/lumingasiento.h"
#include "shell/menusdocumento.h"

#include "grid/vsgrid.h"
#include "lineeditor/campocalculadora.h"
#include "lineeditor/campofecha.h"
#include "lineeditor/lumerasiento.h"
#include "entries/asientodatos.h"
#include "entries/vistas.h"
#include "store/basedemo.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>
#include <tuple>

// What the scripted message service records when the document shows catalogue text numero
// as tipo ("pregunta", "advertencia", "error", "información"), in the language in use.
inline QString Dicho(const char *tipo, int numero)
{
    const QString texto = Idioma::resLoad(numero - 1000);
    if (texto.isEmpty())
        ADD_FAILURE() << "sin texto " << numero << " en el catálogo cargado";
    return QString::fromUtf8(tipo) + QStringLiteral(": ") + texto;
}

// Keys as a user presses them, where the test says.
inline void enter(QWidget *w) { QTest::keyClick(w, Qt::Key_Return); }
inline QWidget *foco() { return QApplication::focusWidget(); }
// Types over what a text field holds.
inline void escribir(QWidget *w, const QString &t)
{
    if (auto *e = qobject_cast<QLineEdit *>(w))
        e->selectAll();
    QTest::keyClicks(w, t);
}

// Enter in the amount accepts the line; an entry without an authoriser is first given the
// first one of the list, as the document asks (1953, not kept among the texts shown), and
// Enter there takes the line.
void AceptarLinea(lumIngAsiento &doc, MensajesGuionados &mensajes);

// The grid rows of the stored entries' headers a document shows, top to bottom.
QList<int> FilasCabezal(lumIngAsiento &doc);

// An entry's writes, oldest first, as "operation" or "operation:user".
QStringList Operaciones(Conexion &conexion, qint32 id, bool conUsuario = false);

// A started document of the user on the test database, on its clock, with its own host, messages
// and layout folder, in a window shorter than a month of entries (the grid scrolls).
// The start-up options given are added after the usual ones.
std::unique_ptr<lumIngAsiento> DocumentoIniciado(const BaseDePrueba &base, HostDePrueba &host, MensajesGuionados &mensajes,
                                                 ServicioBusquedaCuentas &busqueda, const QTemporaryDir &carpeta, int usuario,
                                                 const QString &opciones = {});

// A stored entry as the database holds it: the header's columns and its lines, as text, so
// two snapshots compare whole.
struct AsientoEnBase
{
    QStringList cabezal;          // estado, fecha, leyenda, libro, autoriza, verificado
    QList<QStringList> lineas;    // cuenta, lado, importe, importe MC, orden, proyecto, departamento
    QString sello;
    bool operator==(const AsientoEnBase &o) const { return cabezal == o.cabezal && lineas == o.lineas; }
};
std::ostream &operator<<(std::ostream &os, const AsientoEnBase &a);

// The document started on the demo company in a window shorter than its grid, driven with
// the keyboard as a user does, with the database checked afterwards.
class Escenario : public ::testing::TestWithParam<Motor>
{
protected:
    Escenario();

    // A started document of the user on this test's database, with its own host, messages
    // and layout folder.
    std::unique_ptr<lumIngAsiento> Documento(HostDePrueba &host, MensajesGuionados &mensajes, const QTemporaryDir &carpeta,
                                             int usuario);
    // The administrator's document of the fixture closed and started again, active.
    void reiniciar();

    // Escape in the line editor leaves edit mode once the key's event is over.
    void escape(QWidget *w)
    {
        QTest::keyClick(w, Qt::Key_Escape);
        QApplication::processEvents();
    }
    lumERAsiento *editor() const { return m_doc->editor(); }

    QComboBox *autoriza() const { return m_doc->findChild<QComboBox *>(QStringLiteral("cfAutoriza")); }
    void aceptarLinea() { AceptarLinea(*m_doc, m_mensajes); }
    // Runs an item of the document's menus.
    void elegir(const char *accion) { m_doc->menus().accion(QString::fromLatin1(accion))->trigger(); }
    // Loads the stored entry into the grid, above the "new entry" row.
    ::testing::AssertionResult mostrarAlFinal(qint32 id);

    // Loads a view of the view menu.
    void vista(int v) { m_doc->ElegirVista(v); }
    // The grid row of the entry's header; -1 when it is not shown.
    int filaDe(qint32 id) const { return m_doc->FilaDeAsiento(id); }
    // Puts the grid on a row and presses Enter there, as a user opens an entry.
    void abrir(int fila);
    // The rows of an entry as the user sees them, one text per row.
    QStringList filasVistas(qint32 id) const;
    QStringList filasVistas(int desde, int hasta) const;
    // Whether the line editor is shown inside the grid's visible area.
    bool editorALaVista() const;

    // A new entry typed with the keyboard alone: Ctrl+N, the header by Enter, a debit and a
    // credit line.
    void nuevoConTeclado(const QString &leyenda, const QString &debe, const QString &haber, const QString &importe);

    AsientoEnBase enBase(qint32 id);
    // A stored entry of the first month's view, shown, with lines in pesos only, registered,
    // dated before today, followed by another entry; 0 when the demo has none.
    qint32 asientoSimple();
    // Stores an entry of yesterday in pesos with the lines given (account code, debit,
    // amount) and shows it last in the grid.
    qint32 asientoAlFinal(qint16 estado, const QString &leyenda, const QList<std::tuple<const char *, bool, double>> &lineas,
                          qint16 libro);
    qint32 ultimoId() { return m_base.UltimoAsiento(); }
    // Another session, the accountant's, changes the entry's legend through the store.
    void otroCambia(qint32 id, const QString &leyenda);
    QList<qint32> ids(const QString &condicion) { return m_base.Asientos(condicion); }

    BaseDePrueba m_base;
    QTemporaryDir m_carpeta;
    HostDePrueba m_host;
    MensajesGuionados m_mensajes;
    BusquedaExacta m_busqueda;
    std::unique_ptr<lumIngAsiento> m_doc;
};
