#pragma once
// Reference vectors as the scripts in scripts/ write them: lines of numbers,
// '#' lines for comments. Each test reads the columns it knows.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace VelmoraTest {

inline std::string TestData(std::string const & name) { return std::string(VELMORA_TEST_DATA) + "/" + name; }

// Every row of a file under tests/data; a test failure if there is none.
inline std::vector<std::vector<double>> ReferenceRows(std::string const & name)
{
  std::vector<std::vector<double>> rows;
  std::ifstream file(TestData(name));
  std::string line;
  while (std::getline(file, line)) {
    if (line.empty() || line[0] == '#')
      continue;
    std::istringstream in(line);
    std::vector<double> row;
    for (double v; in >> v;)
      row.push_back(v);
    rows.push_back(std::move(row));
  }
  EXPECT_FALSE(rows.empty()) << "no rows in tests/data/" << name;
  return rows;
}

} // namespace VelmoraTest
