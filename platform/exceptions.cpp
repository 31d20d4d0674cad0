#include "platform/exceptions.h"

#include <cxxabi.h>

#include <cstdlib>
#include <exception>
#include <memory>
#include <typeinfo>

namespace SharedClasses::platform {

namespace {

std::string readableType(const std::type_info& type) {
  int status = 0;
  const std::unique_ptr<char, void (*)(void*)> name(abi::__cxa_demangle(type.name(), nullptr, nullptr, &status),
                                                    std::free);
  return status == 0 ? name.get() : type.name();
}

}  // namespace

std::optional<std::string> nameOfThrown(const std::function<void()>& callback) {
  try {
    callback();
    return std::nullopt;
  } catch (const abi::__forced_unwind&) {
    throw;
  } catch (const std::exception& exception) {
    return readableType(typeid(exception));
  } catch (...) {
    return "an object that is no exception";
  }
}

}  // namespace SharedClasses::platform
