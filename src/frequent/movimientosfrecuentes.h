#pragma once

#include "entries/frecuentesdatos.h"

#include <QDialog>

#include <memory>

class CampoFecha;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;
class ServicioBusquedaCuentas;
class lumERAsiento;
struct DatosDocumento;

// The frequent-entries component: a dialog to create a frequent entry, or to change a stored
// one: its name, legend and book, whether it is scheduled (monthly, from a first date), and
// its lines, typed with the line editor below the list of lines (Enter in the amount adds
// the line; Supr on a line of the list takes it out). "Guardar" refuses a template without
// a name or without lines, and tells a failure to store it with 1908. Leaving with changes
// not saved (Cancel, Escape, closing the window) asks first (1968).
class MovimientosFrecuentes : public QDialog
{
    Q_OBJECT
public:
    MovimientosFrecuentes(const DatosDocumento &datos, ServicioBusquedaCuentas &cuentas, QWidget *padre = nullptr);
    ~MovimientosFrecuentes() override;

    // Shows the dialog for a new template (0) or a stored one; answers its MFrID once saved,
    // 0 when the user cancelled or the template does not exist.
    qint32 Editar(qint32 mfrID = 0);

    void reject() override;

protected:
    bool eventFilter(QObject *objeto, QEvent *evento) override;
    void resizeEvent(QResizeEvent *evento) override;

private:
    void crearControles();
    void colocarEditor();
    void mostrarLineas();
    void aceptarLinea();
    void quitarLinea();
    void prepararEditor();
    void bfOK_Click();

    const DatosDocumento &m_datos;
    ServicioBusquedaCuentas &m_cuentas;
    MovimientoFrecuente m_movimiento;
    qint32 m_guardado = 0;
    bool m_cambiado = false; // something changed since the template was shown

    QLineEdit *tNombre = nullptr;
    QLineEdit *tLeyenda = nullptr;
    QComboBox *cfLibro = nullptr;
    QCheckBox *chkAgendar = nullptr;
    CampoFecha *odDesde = nullptr;
    QTreeWidget *lvLineas = nullptr;
    lumERAsiento *oraEdit = nullptr;
    QLabel *lDiferencia = nullptr;
    QPushButton *bfOK = nullptr;
    QPushButton *bfCancel = nullptr;
};
