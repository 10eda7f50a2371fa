#include "facts/Listener.hpp"

#include <utility>

namespace Facts {

namespace {

thread_local Listener* current = nullptr;

}  // namespace

ListenerScope::ListenerScope(Listener& listener) : outer_(std::exchange(current, &listener)) {}

ListenerScope::~ListenerScope() {
    current = outer_;
}

void report(const Fact& fact) {
    if (current != nullptr) current->hear(fact);
}

}  // namespace Facts
