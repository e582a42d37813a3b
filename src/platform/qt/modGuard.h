// The one guard of slots and event handlers: what one of them raises ends here and is reported, as
// the toolkit's own code can't pass an exception on. Every connection of the program's is made
// here, and every event handler runs its body here.
#pragma once

#include <QObject>
#include <QPointer>
#include <functional>
#include <string>
#include <type_traits>
#include <utility>

#include "common/clsError.h"

namespace sandrel::qt {

/// Is told an error and the name of the object whose slot or event handler raised it. True when
/// that is to run again.
using ErrorReport = std::function<bool(const clsError& error, const std::string& where)>;

/// Takes the reports while it lives; the one before takes them again afterwards. Without any they
/// go to standard error.
class clsErrorReport {
 public:
  explicit clsErrorReport(ErrorReport report);
  ~clsErrorReport();
  clsErrorReport(const clsErrorReport&) = delete;
  clsErrorReport& operator=(const clsErrorReport&) = delete;

 private:
  ErrorReport m_before;
};

/// Reports the exception that is being handled; true when `object` is still there and its slot is
/// to run again.
bool RunAgain(const QPointer<const QObject>& object) noexcept;

/// Runs the body of a slot or an event handler of `object` and gives what it gives, or false when
/// it failed.
template <class Body>
std::invoke_result_t<Body&> Guard(const QObject* object, Body&& body) noexcept {
  const QPointer<const QObject> held(object);
  for (;;) {
    try {
      return body();
    } catch (...) {
      if (!RunAgain(held)) return std::invoke_result_t<Body&>();
    }
  }
}

/// A slot under the guard. It takes the arguments that the slot itself takes.
template <class Slot>
class clsGuardedSlot {
 public:
  clsGuardedSlot(const QObject* context, Slot slot) : m_context(context), m_slot(std::move(slot)) {}

  template <class... Arguments>
  requires std::is_invocable_v<Slot&, Arguments...>
  void operator()(Arguments&&... arguments) {
    Guard(m_context, [&] { m_slot(arguments...); });
  }

 private:
  const QObject* m_context;  // outlives the connection
  Slot m_slot;
};

/// An operation of `Object`'s as a function.
template <class Object, class Operation>
class clsBoundSlot {
 public:
  clsBoundSlot(Object* object, Operation operation) : m_object(object), m_operation(operation) {}

  template <class... Arguments>
  requires std::is_invocable_v<Operation, Object*, Arguments...>
  void operator()(Arguments&&... arguments) {
    std::invoke(m_operation, m_object, std::forward<Arguments>(arguments)...);
  }

 private:
  Object* m_object;
  Operation m_operation;
};

/// Connects a signal to a function, or to an operation of `context`, until one of both objects
/// goes.
template <class Sender, class Signal, class Context, class Slot>
QMetaObject::Connection Connect(const Sender* sender, Signal signal, Context* context, Slot slot) {
  if constexpr (std::is_member_function_pointer_v<Slot>) {
    return Connect(sender, signal, context, clsBoundSlot<Context, Slot>(context, slot));
  } else {
    return QObject::connect(sender, signal, context,
                            clsGuardedSlot<Slot>(context, std::move(slot)));
  }
}

/// Runs `body` from the event loop, unless `context` has gone by then.
template <class Body>
void Later(QObject* context, Body body) {
  QMetaObject::invokeMethod(context, clsGuardedSlot<Body>(context, std::move(body)),
                            Qt::QueuedConnection);
}

}  // namespace sandrel::qt
