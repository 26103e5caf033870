#include "Wire.h"

#include <sys/socket.h>

#include <cerrno>

namespace robot {

std::string encodeLine(const Fields& fields) {
  std::string line;
  for (const std::string& field : fields) {
    if (&field != &fields.front()) line += '\t';
    for (const char character : field) {
      switch (character) {
        case '\n':
          line += "\\n";
          break;
        case '\r':
          line += "\\r";
          break;
        case '\t':
          line += "\\t";
          break;
        case '\\':
          line += "\\\\";
          break;
        default:
          line += character;
      }
    }
  }
  line += '\n';
  return line;
}

Fields decodeLine(std::string_view line) {
  Fields fields(1);
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '\t') {
      fields.emplace_back();
    } else if (line[i] != '\\' || i + 1 == line.size()) {
      fields.back() += line[i];
    } else {
      const char code = line[++i];
      fields.back() += code == 'n' ? '\n' : code == 'r' ? '\r' : code == 't' ? '\t' : code;
    }
  }
  return fields;
}

bool sendAll(int socket, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

bool takeLine(std::string& received, std::string& line) {
  const std::size_t end = received.find('\n');
  if (end == std::string::npos) return false;
  line = received.substr(0, end);
  received.erase(0, end + 1);
  return true;
}

}  // namespace robot
