#include "Registry.h"

#include <sqlite3.h>

#include <memory>
#include <stdexcept>

namespace VelmoraData {

namespace {

// One prepared statement, stepped row by row; columns are read as text, with
// NULL as the empty string.
class Query
{
public:
  Query(sqlite3 * db, char const * sql)
  {
    if (sqlite3_prepare_v2(db, sql, -1, &m_statement, nullptr) != SQLITE_OK)
      throw std::runtime_error(std::string("proj.db: ") + sqlite3_errmsg(db) + " in: " + sql);
  }
  ~Query() { sqlite3_finalize(m_statement); }
  Query(Query const &) = delete;
  Query & operator=(Query const &) = delete;

  bool Next() { return sqlite3_step(m_statement) == SQLITE_ROW; }
  std::string Text(int column) const
  {
    unsigned char const * text = sqlite3_column_text(m_statement, column);
    return text ? reinterpret_cast<char const *>(text) : std::string();
  }
  bool IsNull(int column) const { return sqlite3_column_type(m_statement, column) == SQLITE_NULL; }
  double Double(int column) const { return sqlite3_column_double(m_statement, column); }
  std::optional<double> Optional(int column) const
  {
    return IsNull(column) ? std::nullopt : std::optional<double>(Double(column));
  }

private:
  sqlite3_stmt * m_statement = nullptr;
};

struct Closer
{
  void operator()(sqlite3 * db) const { sqlite3_close(db); }
};

// Columns of a parameter triple (code, value, uom) starting at `first`, for
// `count` triples, into a parameter map; empty codes are skipped.
void ReadParameters(Query const & q, int first, int count, int stride, std::map<std::string, Parameter> & out)
{
  for (int i = 0; i < count; ++i) {
    int const c = first + i * stride;
    std::string const code = q.Text(c);
    if (!code.empty())
      out[code] = Parameter{q.Text(c + 1), q.Text(c + 2)};
  }
}

} // namespace

Registry::Registry(std::string const & path)
{
  sqlite3 * raw = nullptr;
  if (sqlite3_open_v2(path.c_str(), &raw, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
    std::string const why = raw ? sqlite3_errmsg(raw) : "out of memory";
    sqlite3_close(raw);
    throw std::runtime_error("cannot open " + path + ": " + why);
  }
  std::unique_ptr<sqlite3, Closer> db(raw);

  for (Query q(db.get(), "SELECT value FROM metadata WHERE key = 'EPSG.VERSION'"); q.Next();)
    version = q.Text(0);

  for (Query q(db.get(), "SELECT code, name, type, conv_factor FROM unit_of_measure "
                         "WHERE auth_name = 'EPSG' AND deprecated = 0");
       q.Next();)
    units[q.Text(0)] = Unit{q.Text(0), q.Text(1), q.Text(2), q.Optional(3)};

  for (Query q(db.get(), "SELECT code, name, south_lat, north_lat, west_lon, east_lon FROM extent "
                         "WHERE auth_name = 'EPSG' AND deprecated = 0");
       q.Next();)
    extents[q.Text(0)] = Extent{q.Text(0), q.Text(1), q.Double(2), q.Double(3), q.Double(4), q.Double(5)};

  for (Query q(db.get(), "SELECT object_table_name, object_code, extent_code FROM usage "
                         "WHERE object_auth_name = 'EPSG' AND extent_auth_name = 'EPSG' "
                         "ORDER BY object_table_name, object_code, extent_code");
       q.Next();)
    usages[q.Text(0) + ":" + q.Text(1)].push_back(q.Text(2));

  for (Query q(db.get(), "SELECT code, name, longitude, uom_code FROM prime_meridian "
                         "WHERE auth_name = 'EPSG' AND deprecated = 0");
       q.Next();)
    primeMeridians[q.Text(0)] = PrimeMeridian{q.Text(0), q.Text(1), q.Text(2), q.Text(3)};

  for (Query q(db.get(), "SELECT code, name, uom_code, semi_major_axis, inv_flattening, semi_minor_axis "
                         "FROM ellipsoid WHERE auth_name = 'EPSG' AND deprecated = 0");
       q.Next();)
    ellipsoids[q.Text(0)] = Ellipsoid{q.Text(0), q.Text(1), q.Text(2), q.Double(3), q.Optional(4), q.Optional(5)};

  for (Query q(db.get(), "SELECT code, name, ellipsoid_code, prime_meridian_code FROM geodetic_datum "
                         "WHERE auth_name = 'EPSG' AND deprecated = 0 AND ellipsoid_auth_name = 'EPSG' "
                         "AND prime_meridian_auth_name = 'EPSG'");
       q.Next();)
    datums[q.Text(0)] = Datum{q.Text(0), q.Text(1), q.Text(2), q.Text(3)};

  for (Query q(db.get(), "SELECT coordinate_system_code, orientation, uom_code FROM axis "
                         "WHERE coordinate_system_auth_name = 'EPSG' "
                         "ORDER BY coordinate_system_code, coordinate_system_order");
       q.Next();)
    axes[q.Text(0)].push_back(Axis{q.Text(1), q.Text(2)});

  for (Query q(db.get(), "SELECT code, name, type, coordinate_system_code, datum_code FROM geodetic_crs "
                         "WHERE auth_name = 'EPSG' AND deprecated = 0 AND datum_auth_name = 'EPSG' "
                         "AND coordinate_system_auth_name = 'EPSG'");
       q.Next();)
    geodeticCrs[q.Text(0)] = GeodeticCrs{q.Text(0), q.Text(1), q.Text(2), q.Text(3), q.Text(4)};

  for (Query q(db.get(), "SELECT c.code, c.name, c.horiz_crs_code, v.datum_code, d.name "
                         "FROM compound_crs c JOIN vertical_crs v ON v.auth_name = c.vertical_crs_auth_name "
                         "AND v.code = c.vertical_crs_code JOIN vertical_datum d ON d.auth_name = v.datum_auth_name "
                         "AND d.code = v.datum_code WHERE c.auth_name = 'EPSG' AND c.deprecated = 0 "
                         "AND c.horiz_crs_auth_name = 'EPSG' AND v.datum_auth_name = 'EPSG'");
       q.Next();)
    compoundCrs[q.Text(0)] = CompoundCrs{q.Text(0), q.Text(1), q.Text(2), q.Text(3), q.Text(4)};

  for (char const * sql : {"SELECT code, name FROM coordinate_operation_method WHERE auth_name = 'EPSG'",
                           "SELECT code, name FROM conversion_method WHERE auth_name = 'EPSG'",
                           "SELECT DISTINCT method_code, method_name FROM grid_transformation "
                           "WHERE method_auth_name = 'EPSG'",
                           "SELECT DISTINCT method_code, method_name FROM other_transformation "
                           "WHERE method_auth_name = 'EPSG'"})
    for (Query q(db.get(), sql); q.Next();)
      methodNames[q.Text(0)] = q.Text(1);

  for (Query q(db.get(),
               "SELECT code, name, method_code, "
               "param1_code, param1_value, param1_uom_code, param2_code, param2_value, param2_uom_code, "
               "param3_code, param3_value, param3_uom_code, param4_code, param4_value, param4_uom_code, "
               "param5_code, param5_value, param5_uom_code, param6_code, param6_value, param6_uom_code, "
               "param7_code, param7_value, param7_uom_code "
               "FROM conversion_table WHERE auth_name = 'EPSG' AND deprecated = 0 AND method_auth_name = 'EPSG'");
       q.Next();) {
    Conversion & c = conversions[q.Text(0)];
    c.code = q.Text(0);
    c.name = q.Text(1);
    c.method = q.Text(2);
    ReadParameters(q, 3, 7, 3, c.parameters);
  }

  for (Query q(db.get(), "SELECT code, name, coordinate_system_code, geodetic_crs_code, conversion_code "
                         "FROM projected_crs WHERE auth_name = 'EPSG' AND deprecated = 0 "
                         "AND geodetic_crs_auth_name = 'EPSG' AND conversion_auth_name = 'EPSG' "
                         "AND coordinate_system_auth_name = 'EPSG'");
       q.Next();)
    projectedCrs[q.Text(0)] = ProjectedCrs{q.Text(0), q.Text(1), q.Text(2), q.Text(3), q.Text(4)};

  // Helmert rows: the registry's parameter codes are given to the columns, so
  // that all transformations read alike.
  for (Query q(db.get(),
               "SELECT code, name, method_code, source_crs_code, target_crs_code, "
               "tx, translation_uom_code, ty, translation_uom_code, tz, translation_uom_code, "
               "rx, rotation_uom_code, ry, rotation_uom_code, rz, rotation_uom_code, "
               "scale_difference, scale_difference_uom_code, px, pivot_uom_code, py, pivot_uom_code, "
               "pz, pivot_uom_code "
               "FROM helmert_transformation_table WHERE auth_name = 'EPSG' AND deprecated = 0 "
               "AND source_crs_auth_name = 'EPSG' AND target_crs_auth_name = 'EPSG'");
       q.Next();) {
    Transformation & t = transformations[q.Text(0)];
    t = Transformation{q.Text(0), q.Text(1), q.Text(2), q.Text(3), q.Text(4), {}, {}, {}, "helmert_transformation"};
    char const * const codes[] = {"8605", "8606", "8607", "8608", "8609", "8610", "8611", "8617", "8618", "8667"};
    for (int i = 0; i < 10; ++i)
      if (!q.IsNull(5 + 2 * i))
        t.parameters[codes[i]] = Parameter{q.Text(5 + 2 * i), q.Text(6 + 2 * i)};
  }

  for (Query q(db.get(), "SELECT code, name, method_code, source_crs_code, target_crs_code, grid_name, grid2_name "
                         "FROM grid_transformation WHERE auth_name = 'EPSG' AND deprecated = 0 "
                         "AND source_crs_auth_name = 'EPSG' AND target_crs_auth_name = 'EPSG'");
       q.Next();)
    transformations[q.Text(0)] =
      Transformation{q.Text(0), q.Text(1), q.Text(2), q.Text(3), q.Text(4), {}, q.Text(5), q.Text(6), "grid_transformation"};

  for (Query q(db.get(),
               "SELECT code, name, method_code, source_crs_code, target_crs_code, "
               "param1_code, param1_value, param1_uom_code, param2_code, param2_value, param2_uom_code, "
               "param3_code, param3_value, param3_uom_code "
               "FROM other_transformation WHERE auth_name = 'EPSG' AND deprecated = 0 "
               "AND source_crs_auth_name = 'EPSG' AND target_crs_auth_name = 'EPSG'");
       q.Next();) {
    Transformation & t = transformations[q.Text(0)];
    t = Transformation{q.Text(0), q.Text(1), q.Text(2), q.Text(3), q.Text(4), {}, {}, {}, "other_transformation"};
    ReadParameters(q, 5, 3, 3, t.parameters);
  }
}

std::vector<std::string> const & Registry::ExtentsOf(char const * table, std::string const & code) const
{
  static std::vector<std::string> const none;
  auto const it = usages.find(std::string(table) + ":" + code);
  return it == usages.end() ? none : it->second;
}

} // namespace VelmoraData
