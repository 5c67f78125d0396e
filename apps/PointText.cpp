#include "PointText.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <unistd.h>

namespace VelmoraCli {

LineReader::LineReader(int fd, std::size_t blockSize) : m_fd(fd), m_buffer(blockSize) {}

// Moves the unread tail to the front and reads behind it; grows the buffer
// only for a line longer than it.
bool LineReader::Fill()
{
  if (m_eof)
    return false;
  if (m_begin > 0) {
    std::memmove(m_buffer.data(), m_buffer.data() + m_begin, m_end - m_begin);
    m_end -= m_begin;
    m_begin = 0;
  }
  if (m_end == m_buffer.size())
    m_buffer.resize(m_buffer.size() * 2);
  for (;;) {
    ssize_t const got = ::read(m_fd, m_buffer.data() + m_end, m_buffer.size() - m_end);
    if (got > 0) {
      m_end += std::size_t(got);
      return true;
    }
    if (got < 0 && errno == EINTR)
      continue;
    m_eof = true;
    return false;
  }
}

bool LineReader::Next(std::string_view & line)
{
  std::size_t searched = m_begin;
  for (;;) {
    char const * const start = m_buffer.data() + searched;
    auto const * const newline = static_cast<char const *>(std::memchr(start, '\n', m_end - searched));
    if (newline) {
      std::size_t const stop = std::size_t(newline - m_buffer.data());
      std::size_t length = stop - m_begin;
      if (length > 0 && m_buffer[stop - 1] == '\r')
        --length;
      line = std::string_view(m_buffer.data() + m_begin, length);
      m_begin = stop + 1;
      return true;
    }
    std::size_t const pending = m_end - m_begin;
    if (!Fill()) {
      if (m_begin == m_end)
        return false;
      // The last line has no line end.
      std::size_t length = m_end - m_begin;
      if (m_buffer[m_begin + length - 1] == '\r')
        --length;
      line = std::string_view(m_buffer.data() + m_begin, length);
      m_begin = m_end;
      return true;
    }
    searched = m_begin + pending;
  }
}

OutputBuffer::OutputBuffer(std::FILE * file, std::size_t blockSize) : m_file(file), m_data(blockSize) {}

OutputBuffer::~OutputBuffer() { Flush(); }

void OutputBuffer::Append(std::string_view text)
{
  if (text.size() > m_data.size()) {
    Flush();
    std::fwrite(text.data(), 1, text.size(), m_file);
    return;
  }
  Reserve(text.size());
  std::memcpy(m_data.data() + m_used, text.data(), text.size());
  m_used += text.size();
}

void OutputBuffer::AppendFixed(double value, int decimals)
{
  // Sign, 309 integer digits at most for a double, the point, the decimals.
  std::size_t const longest = 312 + std::size_t(decimals);
  Reserve(longest);
  if (value == 0.0)
    value = 0.0; // no "-0.000"
  char * const begin = m_data.data() + m_used;
  auto const result = std::to_chars(begin, begin + longest, value, std::chars_format::fixed, decimals);
  m_used += std::size_t(result.ptr - begin);
  // A value that rounds to zero from below still prints a sign: drop it.
  if (*begin == '-' && std::all_of(begin + 1, result.ptr, [](char c) { return c == '0' || c == '.'; })) {
    std::memmove(begin, begin + 1, std::size_t(result.ptr - begin - 1));
    --m_used;
  }
}

void OutputBuffer::Flush()
{
  if (m_used > 0)
    std::fwrite(m_data.data(), 1, m_used, m_file);
  m_used = 0;
  std::fflush(m_file);
}

namespace {

bool IsSeparator(char c) { return c == ' ' || c == '\t' || c == ',' || c == '\r'; }

} // namespace

LineKind ParsePoint(std::string_view line, double (&values)[3], int & count)
{
  count = 0;
  char const * p = line.data();
  char const * const end = p + line.size();
  for (;;) {
    while (p != end && IsSeparator(*p))
      ++p;
    if (p == end)
      break;
    if (count == 3)
      return LineKind::kNotAPoint;
    if (*p == '+' && ++p != end && (*p == '-' || *p == '+'))
      return LineKind::kNotAPoint;
    double value = 0.0;
    auto const result = std::from_chars(p, end, value, std::chars_format::general);
    if (result.ec != std::errc() || !std::isfinite(value) || (result.ptr != end && !IsSeparator(*result.ptr)))
      return LineKind::kNotAPoint;
    values[count++] = value;
    p = result.ptr;
  }
  if (count == 0)
    return LineKind::kBlank;
  return count >= 2 ? LineKind::kPoint : LineKind::kNotAPoint;
}

} // namespace VelmoraCli
