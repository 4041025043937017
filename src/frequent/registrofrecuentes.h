#pragma once

#include <QDialog>
#include <QString>

class CampoFecha;
class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;
class ServicioBusquedaCuentas;
struct DatosDocumento;
struct MovimientoFrecuente;

// The registering component of frequent entries: finds a frequent entry by name, shows its
// lines, and registers it as an entry at the date chosen (registered when it balances, a
// draft when the user stores new entries as drafts, incomplete otherwise). Scheduled
// entries that are due are listed first, marked, with their due date proposed; registering
// one moves its next date a month on. "Modificar" opens the chosen template for changes and
// "Eliminar" deletes it after a question. Failures are told with 1912 and write nothing.
class RegistroFrecuentes : public QDialog
{
    Q_OBJECT
public:
    RegistroFrecuentes(const DatosDocumento &datos, ServicioBusquedaCuentas &cuentas, QWidget *padre = nullptr);

    // With an id above 0 that template is registered at once, dated today (a scheduled one
    // at its due date); with 0 the dialog lets the user find one. Answers the ids of the
    // entries written, joined by ","; empty when none was.
    QString Registrar(qint32 mfrID);
    // The template the last Registrar wrote an entry from; 0 when none.
    qint32 FrecuenteRegistrado() const { return m_frecuente; }

protected:
    bool eventFilter(QObject *objeto, QEvent *evento) override;

private:
    // avisar: a list that cannot be read is told in a box; while the user types it is told
    // in the state line only, so no key goes to a box.
    void llenarLista(bool avisar = true);
    void mostrarLineas();
    qint32 elegido() const;
    qint32 registrar(const MovimientoFrecuente &m, const QDate &fecha);
    void bfOK_Click();
    void modificar();
    void eliminar();

    const DatosDocumento &m_datos;
    ServicioBusquedaCuentas &m_cuentas;
    QString m_registrados;
    qint32 m_frecuente = 0;
    QString m_falloLista; // why the list could not be read the last time; empty when it could

    QLineEdit *tBuscar = nullptr;
    QTreeWidget *lvFrecuentes = nullptr;
    QTreeWidget *lvLineas = nullptr;
    CampoFecha *odFecha = nullptr;
    QLabel *lEstado = nullptr;
    QPushButton *bfOK = nullptr;
    QPushButton *bfCancel = nullptr;
    QPushButton *bfModificar = nullptr;
    QPushButton *bfEliminar = nullptr;
};
