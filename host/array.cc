#include "host/array.h"

#include "host/internal/arrays.h"
#include "host/internal/state.h"
#include "host/internal/variants.h"

namespace host {

std::int32_t Array::type() const { return array_->type(); }

std::size_t Array::size() const { return array_->size(); }

Value Array::at(std::size_t index) const {
  Value element = array_->value(*state_, index);
  if (const auto* const object = std::get_if<ObjectRef>(&element))
    return internal::unbox(*state_, object->handle());
  return element;
}

void Array::insert(std::size_t index, const Value& value) { array_->insert(*state_, index, value); }

void Array::replace(std::size_t index, const Value& value) {
  array_->replace(*state_, index, value);
}

void Array::remove(std::size_t index) { array_->remove(*state_, index); }

void Array::resize(std::size_t size) { array_->resize(*state_, size); }

}  // namespace host
