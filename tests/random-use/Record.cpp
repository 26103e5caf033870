#include "Record.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace randomuse {

namespace {

template <std::size_t size>
void store(std::array<char, size>& place, std::string_view text) {
  const std::size_t count = std::min(text.size(), size - 1);
  std::memcpy(place.data(), text.data(), count);
  place[count] = '\0';
}

}  // namespace

Record::Record()
    : common_(static_cast<Common*>(mmap(nullptr, sizeof(Common), PROT_READ | PROT_WRITE,
                                        MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {
  if (common_ == MAP_FAILED) std::abort();
}

void Record::beginLife() {
  common_->digest = 14695981039346656037U;
  common_->now = 0;
  common_->written = 0;
  store(common_->failure, "");
  for (std::size_t i = places_.size(); i < common_->controlCount; ++i) {
    places_[common_->controls[i].name.data()] = i;
  }
}

void Record::line(std::string_view text) {
  std::string whole = std::to_string(common_->now) + " ms  ";
  // One event, one line.
  constexpr std::size_t most = 400;
  for (const char c : text.substr(0, most)) whole += c == '\n' || c == '\r' ? ' ' : c;
  whole += '\n';
  for (const char c : whole) {
    common_->digest = (common_->digest ^ static_cast<unsigned char>(c)) * 1099511628211U;
    common_->journal[common_->written++ % journalSize] = c;
  }
}

void Record::fail(std::string_view why) {
  store(common_->failure, why);
  _exit(EXIT_FAILURE);
}

Record::Control& Record::control(const std::string& name) {
  const std::string known = name.substr(0, sizeof(Control::name) - 1);
  const auto found = places_.find(known);
  if (found != places_.end()) return common_->controls[found->second];
  if (common_->controlCount == mostControls) fail("there are too many names of controls");
  places_[known] = common_->controlCount;
  Control& added = common_->controls[common_->controlCount++];
  store(added.name, known);
  return added;
}

void Record::saw(const std::string& name, bool enabled) {
  Control& seen = control(name);
  seen.enabled = seen.enabled || enabled;
}

void Record::touched(const std::string& name) { ++control(name).touches; }

std::string Record::lastLines(std::size_t most) const {
  const std::size_t count = std::min(common_->written, journalSize);
  std::string text;
  text.reserve(count);
  for (std::size_t at = common_->written - count; at < common_->written; ++at) {
    text += common_->journal[at % journalSize];
  }
  std::size_t from = text.size();
  for (std::size_t lines = 0; lines <= most && from != std::string::npos && from > 0; ++lines) {
    from = text.rfind('\n', from - 1);
  }
  return from == std::string::npos ? text : text.substr(from + (from == 0 ? 0 : 1));
}

std::string Record::coverage() const {
  std::size_t enabled = 0;
  std::size_t touched = 0;
  std::string untouched;
  for (std::size_t i = 0; i < common_->controlCount; ++i) {
    const Control& each = common_->controls[i];
    enabled += each.enabled ? 1U : 0U;
    touched += each.touches > 0 ? 1U : 0U;
    if (each.enabled && each.touches == 0) untouched += std::string("\n  ") + each.name.data();
  }
  return "controls seen " + std::to_string(common_->controlCount) + ", enabled " +
         std::to_string(enabled) + ", acted on " + std::to_string(touched) +
         (untouched.empty() ? "" : ", enabled and never acted on:" + untouched);
}

}  // namespace randomuse
