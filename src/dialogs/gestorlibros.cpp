#include "gestorlibros.h"

#include "services/serviciomensajes.h"


#include <QDialogButtonBox>
#include <QHeaderView>
#include <QInputDialog>
#include <QKeyEvent>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

GestorLibros::GestorLibros(Conexion &conexion, ServicioMensajes &mensajes, std::function<QString(int)> texto, QWidget *padre)
    : QDialog(padre)
    , m_libros(conexion)
    , m_mensajes(mensajes)
    , m_texto(std::move(texto))
{
    setObjectName(QStringLiteral("dlgLibros"));
    setWindowTitle(this->texto(2030));
    resize(460, 380);
    m_lista = new QTreeWidget(this);
    m_lista->setObjectName(QStringLiteral("lstLibros"));
    m_lista->setAccessibleName(this->texto(2031));
    m_lista->setRootIsDecorated(false);
    m_lista->setHeaderLabels({this->texto(2023), this->texto(2024), QString()});
    m_lista->header()->setSectionResizeMode(1, QHeaderView::Stretch);
    auto *agregar = new QPushButton(this->texto(2032), this);
    m_renombrar = new QPushButton(this->texto(2033), this);
    m_eliminar = new QPushButton(this->texto(2034), this);
    auto *botones = new QDialogButtonBox(QDialogButtonBox::Close, this);
    botones->button(QDialogButtonBox::Close)->setText(this->texto(2035));
    botones->addButton(agregar, QDialogButtonBox::ActionRole);
    botones->addButton(m_renombrar, QDialogButtonBox::ActionRole);
    botones->addButton(m_eliminar, QDialogButtonBox::ActionRole);
    auto *capa = new QVBoxLayout(this);
    capa->addWidget(m_lista);
    capa->addWidget(botones);
    connect(botones, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(agregar, &QPushButton::clicked, this, &GestorLibros::agregar);
    connect(m_renombrar, &QPushButton::clicked, this, &GestorLibros::renombrar);
    connect(m_eliminar, &QPushButton::clicked, this, &GestorLibros::eliminar);
    connect(m_lista, &QTreeWidget::currentItemChanged, this, &GestorLibros::actualizarBotones);
    cargar();
}

void GestorLibros::cargar(qint16 elegir)
{
    m_lista->clear();
    if (const auto libros = m_libros.Listar(); !libros) {
        m_mensajes.MostrarError(texto(1932), windowTitle(), libros.fallo().detalle);
    } else {
        for (const Libros::Libro &l : *libros) {
            auto *i = new QTreeWidgetItem(m_lista, {QString::number(l.codigo), l.nombre, l.delSistema ? texto(2036) : QString()});
            i->setData(0, Qt::UserRole, int(l.codigo));
            i->setData(0, Qt::UserRole + 1, l.delSistema);
            if (l.delSistema)
                i->setForeground(1, palette().brush(QPalette::Disabled, QPalette::Text));
            if (l.codigo == elegir)
                m_lista->setCurrentItem(i);
        }
    }
    if (!m_lista->currentItem() && m_lista->topLevelItemCount() > 0)
        m_lista->setCurrentItem(m_lista->topLevelItem(0));
    actualizarBotones();
}

void GestorLibros::actualizarBotones()
{
    const QTreeWidgetItem *i = m_lista->currentItem();
    const bool propio = i && !i->data(0, Qt::UserRole + 1).toBool();
    m_renombrar->setEnabled(propio);
    m_eliminar->setEnabled(propio);
}

void GestorLibros::avisar(const std::optional<Fallo> &fallo)
{
    if (!fallo)
        return;
    const QString texto = this->texto(fallo->numeroTexto);
    if (fallo->deLaBase)
        m_mensajes.MostrarError(texto, windowTitle(), fallo->detalle);
    else
        m_mensajes.Advertir(texto);
}

// A name that is refused is asked for again as it was typed, until it is taken or the user
// gives up: what was typed is never lost.
void GestorLibros::agregar()
{
    QString nombre;
    for (;;) {
        bool ok = false;
        nombre = QInputDialog::getText(this, windowTitle(), texto(2037), QLineEdit::Normal, nombre, &ok);
        if (!ok)
            return;
        const auto codigo = m_libros.Agregar(nombre);
        avisar(codigo ? std::nullopt : std::optional<Fallo>(codigo.fallo()));
        // The new book is chosen; after a refusal the choice stays where it was.
        cargar(codigo ? *codigo : codigoActual());
        if (codigo)
            return;
    }
}

qint16 GestorLibros::codigoActual() const
{
    const QTreeWidgetItem *i = m_lista->currentItem();
    return i ? qint16(i->data(0, Qt::UserRole).toInt()) : 0;
}

void GestorLibros::renombrar()
{
    const QTreeWidgetItem *i = m_lista->currentItem();
    const qint16 codigo = codigoActual();
    if (!i)
        return;
    QString nombre = i->text(1);
    for (;;) {
        bool ok = false;
        nombre = QInputDialog::getText(this, windowTitle(), texto(2038), QLineEdit::Normal, nombre, &ok);
        if (!ok)
            return;
        const auto fallo = m_libros.Renombrar(codigo, nombre);
        avisar(fallo);
        cargar(codigo);
        // A book another session removed meanwhile has nothing left to rename.
        if (!fallo || fallo->numeroTexto == Libros::kNoExiste || fallo->numeroTexto == Libros::kDelSistema)
            return;
    }
}

void GestorLibros::eliminar()
{
    const QTreeWidgetItem *i = m_lista->currentItem();
    const qint16 codigo = codigoActual();
    if (!i)
        return;
    // A book that cannot go is said before asking whether it should.
    if (const auto fallo = m_libros.PuedeEliminar(codigo)) {
        avisar(fallo);
        return;
    }
    if (m_mensajes.Preguntar(texto(2039).arg(i->text(1)), ServicioMensajes::Botones::SiNo,
                             windowTitle())
        != ServicioMensajes::Respuesta::Si)
        return;
    avisar(m_libros.Eliminar(codigo));
    cargar();
}

void GestorLibros::keyPressEvent(QKeyEvent *evento)
{
    switch (evento->key()) {
    case Qt::Key_Insert:
        agregar();
        return;
    // The keys do what the buttons do, and only when they may: a system book is not offered.
    case Qt::Key_F2:
        if (m_renombrar->isEnabled())
            renombrar();
        return;
    case Qt::Key_Delete:
        if (m_eliminar->isEnabled())
            eliminar();
        return;
    default:
        QDialog::keyPressEvent(evento);
    }
}
