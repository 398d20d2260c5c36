// Calls of functions whose types are known only from a declaration, prepared once and made often.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <utility>

#include "host/declaration.h"
#include "host/value.h"

namespace host {

/// A function that a plugin registered; its true type follows from its declaration.
using PluginFunction = void (*)();

/// A text that is passed again and again, such as a key: a host string that is made when it is
/// first passed. It must not outlive its host.
class ReadyText {
 public:
  /// @param text in UTF-8.
  explicit ReadyText(std::string text) : text_(std::move(text)) {}
  ~ReadyText();
  ReadyText(const ReadyText&) = delete;
  ReadyText& operator=(const ReadyText&) = delete;

  /// The string, without a reference for the caller.
  zel::REALstring handle();

 private:
  std::string text_;
  zel::REALstring handle_ = nullptr;
};
/// By parameter: what is passed instead of its argument, null where it is the argument. There may
/// be fewer than parameters.
using ReadyTexts = std::span<const std::unique_ptr<ReadyText>>;

/// A function, and how its arguments and its result pass.
class PreparedCall {
 public:
  static constexpr std::size_t kMostParameters = 15;

  /// @param function never null.
  /// @param declaration of kMostParameters at most, else std::invalid_argument is thrown.
  /// @param ofInstance whether the instance is the first argument; it isn't for shared methods.
  PreparedCall(PluginFunction function, const Declaration& declaration, bool ofInstance);
  ~PreparedCall();
  PreparedCall(const PreparedCall&) = delete;
  PreparedCall& operator=(const PreparedCall&) = delete;

  /// Calls the function. Exceptions that it raises go on pending in the host.
  /// @param instance kept alive by the caller; null for a shared method.
  /// @param arguments one for each parameter, of the declared types; any value where a variant is
  /// declared.
  /// @return std::monostate without a declared result; a variant is given as it is.
  Value run(zel::REALobject instance, const Value* arguments, ReadyTexts ready = {}) const;

 private:
  struct Plan;
  std::unique_ptr<Plan> plan_;
};

}  // namespace host
