#pragma once

#include "facts/Facts.hpp"

namespace Facts {

/// Takes the facts of a run, in the order in which they come up.
class Listener {
public:
    Listener() = default;
    virtual ~Listener() = default;
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    virtual void hear(const Fact& fact) = 0;
};

/// Hears facts and does nothing, for work whose facts are known already.
class Unheard final : public Listener {
public:
    void hear(const Fact& /*fact*/) override {}
};

/// Makes a listener the one that `report` reaches, while this object lives. Scopes of one thread
/// nest: the inner one hides the outer one.
class ListenerScope {
public:
    explicit ListenerScope(Listener& listener);
    ~ListenerScope();
    ListenerScope(const ListenerScope&) = delete;
    ListenerScope& operator=(const ListenerScope&) = delete;

private:
    Listener* outer_;
};

/// Hands `fact` to the listener in force on this thread; without one the fact is dropped.
///
/// Images and readers are values without a way back to the run that they serve, and their
/// operations are fixed; so the listener is found by scope and not handed down.
void report(const Fact& fact);

}  // namespace Facts
