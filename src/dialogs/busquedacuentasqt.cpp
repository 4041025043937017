#include "busquedacuentasqt.h"

#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

QList<BusquedaCuentasQt::Cuenta> BusquedaCuentasQt::Coincidencias(const QList<Cuenta> &cuentas, const QString &texto)
{
    const QString t = texto.trimmed();
    QList<Cuenta> resultado;
    for (const Cuenta &c : cuentas)
        if (c.codigo.compare(t, Qt::CaseInsensitive) == 0)
            return {c};
    for (const Cuenta &c : cuentas)
        if (t.isEmpty() || c.codigo.startsWith(t, Qt::CaseInsensitive) || c.nombre.contains(t, Qt::CaseInsensitive))
            resultado << c;
    return resultado;
}

namespace {

class DialogoCuentas : public QDialog
{
public:
    DialogoCuentas(const QList<BusquedaCuentasQt::Cuenta> &cuentas, const QString &texto,
                   const std::function<QString(int)> &catalogo, QWidget *padre)
        : QDialog(padre)
        , m_cuentas(cuentas)
        , m_cerrada(catalogo(2027))
    {
        setObjectName(QStringLiteral("dlgBuscarCuenta"));
        setWindowTitle(catalogo(2020));
        resize(560, 420);
        m_filtro = new QLineEdit(texto, this);
        m_filtro->setObjectName(QStringLiteral("tFiltroCuenta"));
        m_filtro->setAccessibleName(catalogo(2021));
        m_lista = new QTreeWidget(this);
        m_lista->setObjectName(QStringLiteral("lstCuentas"));
        m_lista->setAccessibleName(catalogo(2022));
        m_lista->setRootIsDecorated(false);
        m_lista->setHeaderLabels({catalogo(2023), catalogo(2024), catalogo(2025), QString()});
        m_lista->header()->setSectionResizeMode(1, QHeaderView::Stretch);
        auto *etiqueta = new QLabel(catalogo(2026), this);
        etiqueta->setBuddy(m_filtro);
        auto *botones = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
        botones->button(QDialogButtonBox::Ok)->setText(catalogo(1088));
        botones->button(QDialogButtonBox::Cancel)->setText(catalogo(1089));
        auto *capa = new QVBoxLayout(this);
        capa->addWidget(etiqueta);
        capa->addWidget(m_filtro);
        capa->addWidget(m_lista);
        capa->addWidget(botones);
        connect(botones, &QDialogButtonBox::accepted, this, &QDialog::accept);
        connect(botones, &QDialogButtonBox::rejected, this, &QDialog::reject);
        connect(m_filtro, &QLineEdit::textChanged, this, &DialogoCuentas::filtrar);
        connect(m_lista, &QTreeWidget::itemActivated, this, &QDialog::accept);
        m_filtro->installEventFilter(this);
        filtrar();
    }

    qint32 elegida() const
    {
        const QTreeWidgetItem *i = m_lista->currentItem();
        return i ? i->data(0, Qt::UserRole).toInt() : 0;
    }

protected:
    // Up and Down move in the list while the typing stays in the filter box.
    bool eventFilter(QObject *objeto, QEvent *evento) override
    {
        if (objeto == m_filtro && evento->type() == QEvent::KeyPress) {
            const int tecla = static_cast<QKeyEvent *>(evento)->key();
            if (tecla == Qt::Key_Up || tecla == Qt::Key_Down || tecla == Qt::Key_PageUp || tecla == Qt::Key_PageDown) {
                QCoreApplication::sendEvent(m_lista, evento);
                return true;
            }
        }
        return QDialog::eventFilter(objeto, evento);
    }

private:
    void filtrar()
    {
        m_lista->clear();
        for (const auto &c : BusquedaCuentasQt::Coincidencias(m_cuentas, m_filtro->text())) {
            auto *i = new QTreeWidgetItem(m_lista, {c.codigo, c.nombre, c.moneda, c.cerrada ? m_cerrada : QString()});
            i->setData(0, Qt::UserRole, c.id);
        }
        if (m_lista->topLevelItemCount() > 0)
            m_lista->setCurrentItem(m_lista->topLevelItem(0));
    }

    QList<BusquedaCuentasQt::Cuenta> m_cuentas;
    QString m_cerrada; // the closed account's mark
    QLineEdit *m_filtro = nullptr;
    QTreeWidget *m_lista = nullptr;
};

} // namespace

Resultado<bool> BusquedaCuentasQt::Buscar(Conexion &conexion, qint32 empresa, const QString &texto, CuentaElegida &elegida, QWidget *padre)
{
    const auto leidas = CuentasDatos::Imputables(conexion, empresa);
    if (!leidas)
        return leidas.fallo();
    const QList<Cuenta> &cuentas = *leidas;
    const QList<Cuenta> coinciden = Coincidencias(cuentas, texto);
    if (coinciden.size() == 1) {
        elegida = {coinciden.first().id, 0, 0};
        return true;
    }
    DialogoCuentas dialogo(cuentas, texto.trimmed(), m_texto, padre);
    if (dialogo.exec() != QDialog::Accepted || dialogo.elegida() <= 0)
        return false;
    elegida = {dialogo.elegida(), 0, 0};
    return true;
}
