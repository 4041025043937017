#pragma once

#include "editing/pantalla.h"

#include <QFrame>
#include <QPointer>

class CampoFecha;
class Grilla;
class QComboBox;
class QLabel;
class QLineEdit;
class lumERAsiento;
class lumIngAsiento;
class vsGrid;
struct DatosDocumento;

// The document's edit area: the header fields above the grid (date, book, authoriser,
// legend) and the line editor laid over the edited row, each field over its column. It
// shows and reads what the edit session gives it and passes the keys that end a field or
// the edit back to the document; it decides nothing.
class PanelEdicion : public QFrame, public VistaEdicion
{
    Q_OBJECT
public:
    PanelEdicion(lumIngAsiento &documento, const DatosDocumento &datos, Grilla &grilla, vsGrid *grid, QWidget *padre);

    lumERAsiento *editor() const { return oraEdit; }
    CampoFecha *campoFecha() const { return odDate; }
    QLineEdit *campoLeyenda() const { return tLeyenda; }
    QComboBox *listaLibros() const { return cfTipo; }
    // The header as typed so far, for the status line: date, legend and book, as shown.
    QStringList TextoCabezal() const;

    void AsignarTextos();
    void FijarColorFondo(const QColor &color);
    void FijarFormatoFecha(const QString &formatoQt);
    // The authorisers the header's list offers; the list shows only with mostrar.
    void FijarAutorizadores(const QList<std::pair<QString, qint16>> &autorizadores, bool mostrar);
    // The headings of the amount columns as they are outside an edit.
    void RestaurarEncabezados();

    // VistaEdicion.
    int FilaActual() const override;
    void SeleccionarFila(int fila) override;
    void ActualizarContexto() override;
    void FijarLibros(const QList<std::pair<QString, qint16>> &libros) override;
    bool ConAutoriza() const override;
    void AbrirCabezal(const ValoresCabezal &valores) override;
    ValoresCabezal LeerCabezal() override;
    void FijarFecha(const QDate &fecha) override;
    void EnfocarFecha() override;
    void CargarEditor(const QDate &fecha, std::optional<std::pair<bool, Importe>> diferencia,
                      const std::optional<RegistroLinea> &linea) override;
    std::optional<ValorLinea> LineaDelEditor(bool debe) const override;
    void MostrarEditor(int fila, bool enfocar) override;
    void RetomarEdicion(int fila) override;
    void CerrarEdicion(int fila) override;

protected:
    bool eventFilter(QObject *objeto, QEvent *evento) override;

private:
    void crearCampos();
    void conectarEditor();
    void colocarEditor();
    void mostrarFilaEdicion();
    void encabezadosDeEdicion(int campo);
    bool teclaEnCabezal(QObject *objeto, QKeyEvent *evento);

    lumIngAsiento &m_doc;
    const DatosDocumento &m_datos;
    Grilla &m_grilla;
    vsGrid *m_vsGrid;
    int m_fila = 0; // the row the editor lies over; 0 when none
    bool m_aceptarTrasAutoriza = false; // the line waits in the editor for its authoriser
    QPointer<QWidget> m_ultimoFoco;     // the field of the edit that last had the focus

    QFrame *picCabezal = nullptr;
    QLabel *lDate = nullptr;
    CampoFecha *odDate = nullptr;
    QLabel *lLeyenda = nullptr;
    QLineEdit *tLeyenda = nullptr;
    QLabel *lLibro = nullptr;
    QComboBox *cfTipo = nullptr;
    QLabel *lLibroApertura = nullptr;
    QLabel *lAutoriza = nullptr;
    QComboBox *cfAutoriza = nullptr;
    lumERAsiento *oraEdit = nullptr;
};
