#pragma once

#include "criteriosbusqueda.h"

#include <QDialog>
#include <QList>

#include <functional>
#include <utility>
#include <utility>

class CampoCalculadora;
class CampoFecha;
class QComboBox;
class QFrame;
class QLabel;
class QLineEdit;
class QPushButton;
class ServicioBusquedaCuentas;
struct DatosDocumento;

// The search dialog: the user states how the criteria combine, a date range, a book, a
// state, a legend prefix, an account and an amount range. It does not search: "Aceptar"
// checks what was typed, leaves the criteria in `criterios` and hides the dialog;
// "Cancelar" (or Escape) hides it and leaves `criterios` as the last "Aceptar" left them,
// with FindOK false. The dialog is kept between searches, so the controls remember what
// was typed. A project and a department narrow the account's lines; left at "any" they
// do not. Enter moves on through the fields; refusals (an end date before the start,
// 1849; a date or amount that cannot be read, 1951 and 1950; a book the list does not
// hold) keep the focus on the field at fault.
class frmFind : public QDialog
{
    Q_OBJECT
public:
    // The lists the dialog offers, each as name and code. The project and department lists
    // are shown only when the books use them.
    struct Listas
    {
        QList<std::pair<QString, qint16>> libros;
        QList<std::pair<QString, qint16>> proyectos;
        QList<std::pair<QString, qint16>> departamentos;
    };

    frmFind(const DatosDocumento &datos, ServicioBusquedaCuentas &cuentas, const Listas &listas, QWidget *padre = nullptr);

    CriteriosBusqueda criterios;
    // Called by "Ayuda".
    std::function<void()> ayuda;

    // Runs the account lookup on the typed account text: a blank text means no account;
    // otherwise the account-search service is asked and, when it gives an account that
    // exists, the field shows it ("Aceptar" takes it into the criteria). False when no
    // account came.
    bool BuscarCuentaFind();

protected:
    bool eventFilter(QObject *objeto, QEvent *evento) override;
    void keyPressEvent(QKeyEvent *evento) override;
    void showEvent(QShowEvent *evento) override;

private:
    void crearControles(const Listas &listas);
    void elegirCodigo(QComboBox *lista, qint16 codigo);
    qint16 codigoElegido(const QComboBox *lista) const;
    QWidget *siguienteDe(QWidget *campo) const;
    void AsignarTextos();
    bool fechasValidas();
    bool libroValido();
    bool enterEn(QObject *objeto);
    void avisar(int numero, QWidget *campo);
    void bfOK_Click();
    void bfCancel_Click();

    const DatosDocumento &m_datos;
    ServicioBusquedaCuentas &m_cuentas;
    // The account the field shows, taken into the criteria by "Aceptar"; 0 while what the
    // field shows is typed text.
    qint32 m_idCuenta = 0;
    bool m_buscandoCuenta = false;
    std::pair<int, QWidget *> m_aviso{0, nullptr}; // a refusal waiting to be said

    QLabel *lbCriterio = nullptr;
    QComboBox *cfCriterio = nullptr;
    QLabel *lbFecha = nullptr;
    CampoFecha *odInicio = nullptr;
    QLabel *lbHasta = nullptr;
    CampoFecha *odFin = nullptr;
    QLabel *lbLibro = nullptr;
    QComboBox *cfLibro = nullptr;
    QLabel *Label1 = nullptr;
    QComboBox *cfEstado = nullptr;
    QLabel *lbLeyenda = nullptr;
    QLineEdit *tLeyenda = nullptr;
    QLabel *lbCuenta = nullptr;
    QLineEdit *tCuenta = nullptr;
    QLabel *lbProyecto = nullptr;
    QComboBox *cfProyecto = nullptr;
    QLabel *lbDepartamento = nullptr;
    QComboBox *cfDepartamento = nullptr;
    QLabel *lbImporte = nullptr;
    CampoCalculadora *ocImporte = nullptr;
    QLabel *lbImporte2 = nullptr;
    CampoCalculadora *ocImporte2 = nullptr;
    QFrame *picToolbar = nullptr;
    QPushButton *bfOK = nullptr;
    QPushButton *bfCancel = nullptr;
    QPushButton *bfHelp = nullptr;
};
