#pragma once

#include "store/conexion.h"

#include <functional>
#include <optional>
#include <utility>

// A connection that passes everything to another one and watches it: the cause of the last
// failure, a step run before the next write (another session's, say), and statements made
// to fail as a database fails them.
class Espia final : public Conexion
{
public:
    explicit Espia(Conexion &c)
        : m(c)
    {
        UsarReloj(c.relojCompartido());
    }
    std::optional<ErrorBaseDatos::Causa> causa;
    std::function<void()> antesDeEscribir;
    // A statement for which this answers true fails, and reaches no database.
    std::function<bool(const QString &sql)> fallar;

    Motor motor() const override { return m.motor(); }
    bool abierta() const override { return m.abierta(); }
    std::unique_ptr<Recordset> Abrir(const QString &s, const QVariantList &v = {}) override { return vigilar(s, [&] { return m.Abrir(s, v); }); }
    int Ejecutar(const QString &s, const QVariantList &v = {}) override
    {
        if (auto f = std::exchange(antesDeEscribir, {}))
            f();
        return vigilar(s, [&] { return m.Ejecutar(s, v); });
    }
    qint64 Insertar(const QString &s, const QVariantList &v, const QString &id) override { return vigilar(s, [&] { return m.Insertar(s, v, id); }); }
    void Comenzar() override { vigilar({}, [&] { m.Comenzar(); }); }
    void Confirmar() override { vigilar({}, [&] { m.Confirmar(); }); }
    void Deshacer() override { vigilar({}, [&] { m.Deshacer(); }); }
    void Cerrar() override { m.Cerrar(); }
    bool Escuchar(const QString &canal, std::function<void(const QString &)> aviso) override { return m.Escuchar(canal, aviso); }
    void Avisar(const QString &canal, const QString &carga) override { vigilar({}, [&] { m.Avisar(canal, carga); }); }

private:
    template <class F>
    auto vigilar(const QString &sql, F f) -> decltype(f())
    {
        try {
            if (fallar && !sql.isEmpty() && fallar(sql))
                throw ErrorBaseDatos(QStringLiteral("falla preparada: ") + sql);
            return f();
        } catch (const ErrorBaseDatos &e) {
            causa = e.causa();
            throw;
        }
    }
    Conexion &m;
};
