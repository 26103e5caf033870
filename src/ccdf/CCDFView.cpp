#include "ccdf/CCDFView.h"

#include <cstdlib>

namespace pulsemod {

namespace {
CCDFView* current = nullptr;
}

CCDFView& ccdfView() {
  if (current == nullptr) std::abort();
  return *current;
}

CCDFViewGuard::CCDFViewGuard(CCDFView& view) : previous_(current) { current = &view; }

CCDFViewGuard::~CCDFViewGuard() { current = previous_; }

}  // namespace pulsemod
