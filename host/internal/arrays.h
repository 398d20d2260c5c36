// Host arrays of one dimension.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/internal/ledger.h"
#include "host/internal/memory.h"
#include "host/value.h"
#include "plugin/handles.h"

namespace host::internal {

struct ElementType;

class HostArray : public AnyObject {
 public:
  static constexpr std::string_view kWhat = "an array";

  /// @param type its type code as a variant. @param size elements, all 0 or null.
  /// @param withStorage whether the third word of the array points at its elements, or is null.
  HostArray(std::int32_t type, std::size_t size, bool withStorage);

  [[nodiscard]] const void* handle() const override { return memory_.data(); }
  [[nodiscard]] std::string describe() const override;
  void die(State& state) override;
  void poison() override { memory_.poison(); }
  [[nodiscard]] bool intact() const override { return memory_.intact(); }

  [[nodiscard]] zel::REALarray array() const { return static_cast<zel::REALarray>(memory_.data()); }
  [[nodiscard]] std::int32_t type() const { return type_; }
  [[nodiscard]] const ElementType& elementType() const { return elementType_; }
  [[nodiscard]] std::size_t size() const;
  /// An element's own bytes. @param index less than size().
  [[nodiscard]] const std::byte* at(std::size_t index) const;
  /// An element as a test sees it; objects and variants as an ObjectRef. @param index less than
  /// size().
  [[nodiscard]] Value value(State& state, std::size_t index) const;
  /// Takes over the reference that the element may carry. @param index no more than size().
  void insert(std::size_t index, const std::byte* element);
  // Those that take a value throw std::invalid_argument when it isn't of the elements' type.
  void append(State& state, const Value& value);
  /// @param index no more than size().
  void insert(State& state, std::size_t index, const Value& value);
  /// @param index less than size(), as for remove().
  void replace(State& state, std::size_t index, const Value& value);
  void remove(State& state, std::size_t index);
  /// Drops elements at the end, or adds some that are 0 or null.
  void resize(State& state, std::size_t size);

 private:
  void publishStorage();
  /// Gives up the reference that the bytes of an element carry.
  void drop(State& state, const std::byte* element) const;

  Memory memory_;
  std::int32_t type_;
  const ElementType& elementType_;
  bool withStorage_;
  std::vector<std::byte> elements_;  // and some zeros behind the last one: never empty
};

/// Null when the host has no arrays of that element type. @param elementType as Host::array takes.
HostArray* newArray(State& state, std::int32_t elementType, std::size_t size);

// --- entry points. An index outside of the array raises OutOfBoundsException.
/// Null for every other element type than strings (3) and objects (4).
zel::REALarray createArray(State& state, std::int32_t elementType, std::int32_t upperBound);
std::int32_t arrayUpperBound(State& state, zel::REALarray array);
zel::REALstring readStringArray(State& state, zel::REALstringArray array, std::int32_t index);
zel::REALobject readObjectArray(State& state, zel::REALobjectArray array, std::int32_t index);
/// The array's procedure (array, index, value).
void* arrayInsertProcedure(State& state, zel::REALarray array);
/// The array's procedure (array, index, address of the result).
void* arrayReadProcedure(State& state, zel::REALarray array);

}  // namespace host::internal
