#pragma once
// Text in and out of the command-line tool at the speed of the conversions:
// standard input read in large blocks and cut into lines in place, numbers
// parsed and printed with from_chars/to_chars, output gathered into one
// buffer and written in large blocks.
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace VelmoraCli {

// Whole lines of a file descriptor, without their line ends. A view is good
// until the next call.
class LineReader
{
public:
  explicit LineReader(int fd, std::size_t blockSize = std::size_t(1) << 20);
  bool Next(std::string_view & line);

private:
  bool Fill();

  int m_fd;
  std::vector<char> m_buffer;
  std::size_t m_begin = 0;
  std::size_t m_end = 0;
  bool m_eof = false;
};

// Output gathered and written in blocks; flushed when full and at the end.
class OutputBuffer
{
public:
  explicit OutputBuffer(std::FILE * file, std::size_t blockSize = std::size_t(1) << 20);
  ~OutputBuffer();
  OutputBuffer(OutputBuffer const &) = delete;
  OutputBuffer & operator=(OutputBuffer const &) = delete;

  void Append(std::string_view text);
  void Append(char c)
  {
    Reserve(1);
    m_data[m_used++] = c;
  }
  // Fixed notation with `decimals` digits after the point; -0 prints as 0.
  void AppendFixed(double value, int decimals);
  void Flush();

private:
  void Reserve(std::size_t bytes)
  {
    if (m_used + bytes <= m_data.size())
      return;
    Flush();
    // A block smaller than one number grows to hold it.
    if (bytes > m_data.size())
      m_data.resize(bytes);
  }

  std::FILE * m_file;
  std::vector<char> m_data;
  std::size_t m_used = 0;
};

// What a line holds: nothing, a point of two or three numbers, or something else.
enum class LineKind { kBlank, kPoint, kNotAPoint };

// Numbers separated by blanks, tabs or commas; a leading '+' is allowed,
// infinities and NaN are not. Two or three of them make a point.
LineKind ParsePoint(std::string_view line, double (&values)[3], int & count);

} // namespace VelmoraCli
