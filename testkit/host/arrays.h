// Host arrays of one dimension, of strings or of objects.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "plugin/handles.h"
#include "testkit/host/ledger.h"
#include "testkit/host/memory.h"

namespace testkit::host {

class HostArray : public AnyObject {
 public:
  static constexpr std::string_view kWhat = "an array";

  /// @param size elements, all null. @param withStorage whether the third word of the array points
  /// at its elements, or is null.
  HostArray(std::int32_t elementType, std::size_t size, bool withStorage);

  [[nodiscard]] const void* handle() const override { return memory_.data(); }
  [[nodiscard]] std::string describe() const override;
  void die(State& state) override;
  void poison() override { memory_.poison(); }
  [[nodiscard]] bool intact() const override { return memory_.intact(); }

  [[nodiscard]] zel::REALarray array() const { return static_cast<zel::REALarray>(memory_.data()); }
  [[nodiscard]] std::int32_t elementType() const { return elementType_; }
  [[nodiscard]] std::size_t size() const { return elements_.size() - 1; }
  [[nodiscard]] void* element(std::size_t index) const { return elements_[index]; }
  /// Takes over a reference of the caller. @param index no more than size().
  void insert(std::size_t index, void* element);

 private:
  void publishStorage();

  Memory memory_;
  std::int32_t elementType_;
  bool withStorage_;
  std::vector<void*> elements_;  // and a null behind the last one: storage is never empty
};

/// Null when the host has no arrays of that element type.
HostArray* newArray(State& state, std::int32_t elementType, std::size_t size);

// --- entry points. An index outside of the array raises OutOfBoundsException.
zel::REALarray createArray(State& state, std::int32_t elementType, std::int32_t upperBound);
std::int32_t arrayUpperBound(State& state, zel::REALarray array);
zel::REALstring readStringArray(State& state, zel::REALstringArray array, std::int32_t index);
zel::REALobject readObjectArray(State& state, zel::REALobjectArray array, std::int32_t index);
/// The array's procedure (array, index, value).
void* arrayInsertProcedure(State& state, zel::REALarray array);
/// The array's procedure (array, index, address of the result).
void* arrayReadProcedure(State& state, zel::REALarray array);

}  // namespace testkit::host
