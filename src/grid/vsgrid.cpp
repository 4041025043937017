#include "vsgrid.h"

#include "entries/asientosgrilla.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyleOption>

#include <cmath>

namespace {

QPixmap dibujarIcono(const QString &clave)
{
    QPixmap px(16, 16);
    px.fill(Qt::transparent);
    QPainter p(&px);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF hoja(2.5, 1.5, 11, 13);
    auto papel = [&](const QColor &borde, const QColor &fondo) {
        p.setPen(QPen(borde, 1));
        p.setBrush(fondo);
        p.drawRect(hoja);
        p.setPen(QPen(borde.lighter(130), 1));
        for (int y = 5; y <= 11; y += 3)
            p.drawLine(QPointF(4.5, y + 0.5), QPointF(11.5, y + 0.5));
    };
    if (clave == QLatin1String("asiento")) {
        papel(QColor(0x2e, 0x6b, 0x30), QColor(0xe8, 0xf5, 0xe9));
        p.setPen(QPen(QColor(0x2e, 0x7d, 0x32), 2));
        p.drawPolyline(QPolygonF({QPointF(5, 9), QPointF(7.5, 12), QPointF(13, 5)}));
    } else if (clave == QLatin1String("borrador")) {
        papel(QColor(0x80, 0x80, 0x80), QColor(0xff, 0xfd, 0xe7));
        p.setPen(QPen(QColor(0xb2, 0x6a, 0x00), 2));
        p.drawLine(QPointF(6, 13), QPointF(13, 6));
    } else if (clave == QLatin1String("borradorgrabar")) {
        papel(QColor(0x15, 0x65, 0xc0), QColor(0xe3, 0xf2, 0xfd));
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(0x15, 0x65, 0xc0));
        p.drawEllipse(QRectF(9, 9, 6, 6));
    } else if (clave == QLatin1String("inconcluso")) {
        papel(QColor(0xc6, 0x28, 0x28), QColor(0xff, 0xeb, 0xee));
        p.setPen(QPen(QColor(0xc6, 0x28, 0x28), 2));
        p.drawLine(QPointF(8, 4), QPointF(8, 9.5));
        p.drawPoint(QPointF(8, 12.5));
    } else if (clave == QLatin1String("modificado")) {
        // Written by another session since it was read: an orange sheet with a bold mark.
        papel(QColor(0xe6, 0x51, 0x00), QColor(0xff, 0xe0, 0xb2));
        p.setPen(QPen(QColor(0xe6, 0x51, 0x00), 2.5));
        p.drawLine(QPointF(8, 3.5), QPointF(8, 9.5));
        p.drawPoint(QPointF(8, 12.5));
    } else if (clave == QLatin1String("edicion")) {
        papel(QColor(0x4a, 0x14, 0x8c), QColor(0xf3, 0xe5, 0xf5));
        p.setPen(QPen(QColor(0x4a, 0x14, 0x8c), 2.5));
        p.drawLine(QPointF(5, 13), QPointF(14, 4));
    } else {
        return {};
    }
    return px;
}

} // namespace

ModeloGrilla::ModeloGrilla(Grilla &grilla, QObject *padre)
    : QAbstractTableModel(padre)
    , m_g(grilla)
    , m_filas(grilla.Filas() - grilla.FilasFijas())
{
    m_g.FijarObservador(this);
}

ModeloGrilla::~ModeloGrilla()
{
    m_g.FijarObservador(nullptr);
}

QIcon ModeloGrilla::IconoEstado(const QString &clave)
{
    static QHash<QString, QIcon> iconos;
    auto it = iconos.find(clave);
    if (it == iconos.end())
        it = iconos.insert(clave, QIcon(dibujarIcono(clave)));
    return *it;
}

int ModeloGrilla::rowCount(const QModelIndex &padre) const
{
    return padre.isValid() ? 0 : m_filas;
}

int ModeloGrilla::columnCount(const QModelIndex &padre) const
{
    return padre.isValid() ? 0 : m_g.Columnas();
}

QVariant ModeloGrilla::data(const QModelIndex &indice, int rol) const
{
    const int fila = indice.row() + m_g.FilasFijas();
    const int col = indice.column();
    if (!indice.isValid() || fila >= m_g.Filas() || col >= m_g.Columnas())
        return {};
    const CeldaGrilla &c = m_g.celda(fila, col);
    switch (rol) {
    case Qt::DisplayRole:
        return m_g.Texto(fila, col);
    case Qt::AccessibleTextRole: {
        // Every cell of a row says the whole row: the reader follows the current row.
        const QString deLaFila = m_textoAccesible ? m_textoAccesible(fila) : QString();
        return deLaFila.isEmpty() ? m_g.Texto(fila, col) : deLaFila;
    }
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(c.alineacion ? Qt::Alignment::fromInt(c.alineacion) : m_g.AlineacionColumna(col));
    case Qt::ForegroundRole:
        return c.color ? QVariant(QColor::fromRgba(m_g.ColorTexto(fila, col))) : QVariant();
    case Qt::BackgroundRole: {
        const QRgb fondo = m_g.Fila(fila).fondo;
        return fondo ? QVariant(QColor::fromRgba(fondo)) : QVariant();
    }
    case Qt::DecorationRole:
        return col == 0 && !m_g.Imagen(fila).isEmpty() ? QVariant(IconoEstado(m_g.Imagen(fila))) : QVariant();
    case Qt::ToolTipRole:
        return m_ayuda ? QVariant(m_ayuda(fila, col)) : QVariant();
    case Qt::UserRole:
        return m_g.Dato(fila, col);
    default:
        return {};
    }
}

QVariant ModeloGrilla::headerData(int seccion, Qt::Orientation orientacion, int rol) const
{
    if (orientacion != Qt::Horizontal || seccion < 0 || seccion >= m_g.Columnas())
        return QAbstractTableModel::headerData(seccion, orientacion, rol);
    if (rol == Qt::DisplayRole)
        return m_g.Texto(0, seccion);
    if (rol == Qt::TextAlignmentRole)
        return QVariant::fromValue(m_g.AlineacionColumna(seccion));
    return {};
}

void ModeloGrilla::AntesDeInsertar(int fila, int cantidad)
{
    const int r = fila - m_g.FilasFijas();
    beginInsertRows({}, r, r + cantidad - 1);
    m_filas += cantidad;
}

void ModeloGrilla::DespuesDeInsertar()
{
    endInsertRows();
}

void ModeloGrilla::AntesDeQuitar(int fila, int cantidad)
{
    const int r = fila - m_g.FilasFijas();
    beginRemoveRows({}, r, r + cantidad - 1);
    m_filas -= cantidad;
}

void ModeloGrilla::DespuesDeQuitar()
{
    endRemoveRows();
}

void ModeloGrilla::AntesDeMover(int desde, int cantidad, int antes)
{
    const int f = m_g.FilasFijas();
    beginMoveRows({}, desde - f, desde - f + cantidad - 1, {}, antes - f);
}

void ModeloGrilla::DespuesDeMover()
{
    endMoveRows();
}

void ModeloGrilla::CeldasCambiadas(int fila1, int fila2)
{
    const int f = m_g.FilasFijas();
    if (fila1 < f)
        emit headerDataChanged(Qt::Horizontal, 0, m_g.Columnas() - 1);
    const int desde = std::max(fila1, f) - f;
    const int hasta = std::min(fila2 - f, m_filas - 1);
    if (hasta >= desde)
        emit dataChanged(index(desde, 0), index(hasta, m_g.Columnas() - 1));
}

void ModeloGrilla::Reinicio()
{
    beginResetModel();
    m_filas = m_g.Filas() - m_g.FilasFijas();
    endResetModel();
    emit Reiniciado();
}

DelegadoGrilla::DelegadoGrilla(Grilla &grilla, QTableView *vista)
    : QStyledItemDelegate(vista)
    , m_g(grilla)
    , m_vista(vista)
{
}

void DelegadoGrilla::paint(QPainter *p, const QStyleOptionViewItem &opcion, const QModelIndex &indice) const
{
    const int fila = indice.row() + m_g.FilasFijas();
    const int col = indice.column();
    if (fila >= m_g.Filas())
        return;
    const FilaGrilla &f = m_g.Fila(fila);
    const CeldaGrilla &c = m_g.celda(fila, col);
    const bool seleccionada = opcion.state & QStyle::State_Selected;
    const QRect r = opcion.rect;

    p->save();
    p->fillRect(r, seleccionada ? opcion.palette.highlight().color()
                                : (f.fondo ? QColor::fromRgba(f.fondo) : opcion.palette.base().color()));
    if (f.colorBorde) {
        p->setPen(QColor::fromRgba(f.colorBorde));
        p->drawLine(r.topLeft(), r.topRight());
    }

    QRect texto = r.adjusted(3, 0, -3, 0);
    if (col == 0 && f.imagen != 0) {
        const QIcon icono = ModeloGrilla::IconoEstado(m_g.Imagen(fila));
        const int lado = std::min(16, r.height() - 2);
        icono.paint(p, QRect(r.left() + 2, r.top() + (r.height() - lado) / 2, lado, lado));
        texto.setLeft(r.left() + lado + 6);
    }

    QColor color = c.color ? QColor::fromRgba(m_g.ColorTexto(fila, col)) : opcion.palette.text().color();
    if (seleccionada)
        color = opcion.palette.highlightedText().color();
    p->setPen(color);
    p->setFont(opcion.font);
    const Qt::Alignment alineacion = c.alineacion ? Qt::Alignment::fromInt(c.alineacion) : m_g.AlineacionColumna(col);

    // The header row's date and legend run on over the two empty amount columns, and its
    // book name over the empty last column.
    const RangoCeldas rango = RangoCombinado(m_g, fila, col);
    const int primera = rango.columna1;
    const int ultima = rango.columna2;
    if (primera != ultima) {
        const int x1 = m_vista->columnViewportPosition(primera);
        const int x2 = m_vista->columnViewportPosition(ultima) + m_vista->columnWidth(ultima);
        const QRect junta(x1 + 3, r.top(), x2 - x1 - 6, r.height());
        p->setClipRect(r);
        p->drawText(junta, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                    opcion.fontMetrics.elidedText(m_g.Texto(fila, primera), Qt::ElideRight, junta.width()));
    } else {
        const QString t = m_g.Texto(fila, col);
        if (!t.isEmpty())
            p->drawText(texto, int(alineacion | Qt::AlignVCenter) | Qt::TextSingleLine,
                        opcion.fontMetrics.elidedText(t, Qt::ElideRight, texto.width()));
    }
    p->setClipping(false);
    // The current row's background is pale: a frame in its text colour shows where it is,
    // and the current cell gets the style's focus rectangle while the grid has the focus.
    if (seleccionada) {
        p->setPen(color);
        p->drawLine(r.topLeft(), r.topRight());
        p->drawLine(r.bottomLeft(), r.bottomRight());
        const QHeaderView *columnas = m_vista->horizontalHeader();
        int ultima = columnas->count() - 1;
        while (ultima > 0 && columnas->isSectionHidden(columnas->logicalIndex(ultima)))
            --ultima;
        if (columnas->visualIndex(col) == 0)
            p->drawLine(r.topLeft(), r.bottomLeft());
        if (columnas->visualIndex(col) == ultima)
            p->drawLine(r.topRight(), r.bottomRight());
    }
    if (opcion.state & QStyle::State_HasFocus) {
        QStyleOptionFocusRect foco;
        foco.QStyleOption::operator=(opcion);
        foco.rect = r.adjusted(1, 1, -1, -1);
        foco.backgroundColor = opcion.palette.highlight().color();
        m_vista->style()->drawPrimitive(QStyle::PE_FrameFocusRect, &foco, p, m_vista);
    }
    p->restore();
}

vsGrid::vsGrid(Grilla &grilla, QWidget *padre)
    : QTableView(padre)
    , m_modelo(new ModeloGrilla(grilla, this))
{
    setObjectName(QStringLiteral("vsGrid"));
    setModel(m_modelo);
    setItemDelegate(new DelegadoGrilla(grilla, this));
    setWordWrap(false);
    setShowGrid(false);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    verticalHeader()->setVisible(false);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setStretchLastSection(false);
    setTabKeyNavigation(false);

    connect(this, &QTableView::clicked, this, &vsGrid::Click);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &vsGrid::Desplazado);
    connect(m_modelo, &ModeloGrilla::Reiniciado, this, &vsGrid::AplicarAnchos);
    connect(m_modelo, &QAbstractItemModel::headerDataChanged, this, &vsGrid::AplicarAnchos);
    connect(horizontalHeader(), &QHeaderView::sectionResized, this, [this](int columna, int, int nuevo) {
        if (!m_aplicandoAnchos)
            this->grilla().FijarAnchoColumna(columna, PixelesATwips(nuevo));
    });
    AplicarAnchos();
}

int vsGrid::TwipsAPixeles(int twips) const
{
    return int(std::lround(twips * logicalDpiX() / 1440.0));
}

int vsGrid::PixelesATwips(int px) const
{
    return int(std::lround(px * 1440.0 / std::max(1, logicalDpiX())));
}

int vsGrid::AnchoClienteTwips() const
{
    return PixelesATwips(viewport()->width());
}

void vsGrid::AplicarAnchos()
{
    m_aplicandoAnchos = true;
    const Grilla &g = grilla();
    for (int c = 0; c < g.Columnas(); ++c) {
        setColumnHidden(c, g.ColumnaOculta(c));
        const int px = TwipsAPixeles(g.AnchoColumna(c));
        if (columnWidth(c) != px)
            setColumnWidth(c, px);
    }
    m_aplicandoAnchos = false;
}

int vsGrid::FilaActual() const
{
    const QModelIndex i = currentIndex();
    return i.isValid() ? i.row() + grilla().FilasFijas() : -1;
}

void vsGrid::FijarFilaActual(int fila)
{
    const int r = fila - grilla().FilasFijas();
    if (r < 0 || r >= m_modelo->rowCount())
        return;
    const QModelIndex i = m_modelo->index(r, std::max(0, currentIndex().column()));
    setCurrentIndex(i);
    scrollTo(i);
}

int vsGrid::FilaSuperior() const
{
    return rowAt(0) + grilla().FilasFijas();
}

void vsGrid::FijarColoresSeleccion(const QColor &fondo, const QColor &texto)
{
    QPalette p = palette();
    p.setColor(QPalette::Highlight, fondo);
    p.setColor(QPalette::HighlightedText, texto);
    setPalette(p);
}

void vsGrid::keyPressEvent(QKeyEvent *evento)
{
    bool atendida = false;
    emit KeyDown(evento->key(), evento->modifiers(), &atendida);
    if (!atendida) {
        const QString t = evento->text();
        int ascii = 0;
        if (evento->key() == Qt::Key_Return || evento->key() == Qt::Key_Enter)
            ascii = 13;
        else if (evento->key() == Qt::Key_Escape)
            ascii = 27;
        else if (!t.isEmpty() && t.at(0).unicode() >= 32 && !(evento->modifiers() & (Qt::ControlModifier | Qt::AltModifier)))
            ascii = t.at(0).unicode(); // a shortcut (Ctrl+N) types nothing
        if (ascii)
            emit KeyPress(ascii, &atendida);
    }
    if (!atendida)
        QTableView::keyPressEvent(evento);
}

void vsGrid::mousePressEvent(QMouseEvent *evento)
{
    QTableView::mousePressEvent(evento);
    if (evento->button() != Qt::LeftButton)
        emit MouseDown(evento->button(), evento->position().toPoint());
}

void vsGrid::mouseReleaseEvent(QMouseEvent *evento)
{
    QTableView::mouseReleaseEvent(evento);
}

void vsGrid::currentChanged(const QModelIndex &actual, const QModelIndex &anterior)
{
    QTableView::currentChanged(actual, anterior);
    emit FilaActualCambiada();
}

void vsGrid::resizeEvent(QResizeEvent *evento)
{
    QTableView::resizeEvent(evento);
}
