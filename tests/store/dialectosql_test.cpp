#include "store/dialectosql.h"

#include <gtest/gtest.h>

namespace {

// A union of limited halves (the latest direct and inverse quotations) keeps each half's
// limit, and is sorted by the half's number so the direct one comes first on every engine.
const char *const kUnionNumerada =
    "Select * From (Select 1 AS MitadUnion, t1.* From (Select f, c From q Where f IN (Select MAX(f) from q) LIMIT 1) AS t1"
    " UNION ALL Select 2 AS MitadUnion, t2.* From (Select f, 1/c From q LIMIT 1) AS t2) AS tu Order By MitadUnion";

TEST(Dialecto, AdaptaAlMotor)
{
    const struct
    {
        const char *nombre, *entrada, *sqlite, *postgresql;
    } casos[] = {
        {"UltimosCinco", "Select * From (a INNER JOIN b On a.x = b.y) Where id IN (Select Top 5 id From a Order By id Desc) Order By f",
         "Select * From (a INNER JOIN b On a.x = b.y) Where id IN (Select id From a Order By id Desc LIMIT 5) Order By f",
         "Select * From (a INNER JOIN b On a.x = b.y) Where id IN (Select id From a Order By id Desc NULLS LAST LIMIT 5) Order By f"},
        {"CotizacionUnion", "Select Top 1 f, c From q Where f IN (Select MAX(f) from q) UNION ALL Select Top 1 f, 1/c From q",
         kUnionNumerada, kUnionNumerada},
        // Without Top a union is left alone.
        {"UnionSinTop", "Select Min(a) From t Union Select Min(b) From u ", "Select Min(a) From t Union Select Min(b) From u ",
         "Select Min(a) From t Union Select Min(b) From u "},
        // Keywords and quotes inside a literal are text, never SQL.
        {"Literal", "Select Top 2 AsiID From cceAsientos Where AsiLeyenda Like 'O''Brien (Select Top 3 x Like y desc) UNION' Order By AsiID desc",
         "Select AsiID From cceAsientos Where AsiLeyenda Like 'O''Brien (Select Top 3 x Like y desc) UNION' Order By AsiID desc LIMIT 2",
         "Select AsiID From cceAsientos Where AsiLeyenda ILIKE 'O''Brien (Select Top 3 x Like y desc) UNION' Order By AsiID desc NULLS LAST LIMIT 2"},
        {"MinusculasYSinEspacioFinal", "select top 3 a from t", "Select a from t LIMIT 3", "Select a from t LIMIT 3"},
    };
    for (const auto &c : casos) {
        SCOPED_TRACE(c.nombre);
        EXPECT_EQ(AdaptarSQL(QString::fromUtf8(c.entrada), Motor::SQLite).toStdString(), c.sqlite);
        EXPECT_EQ(AdaptarSQL(QString::fromUtf8(c.entrada), Motor::PostgreSQL).toStdString(), c.postgresql);
    }
}

} // namespace
