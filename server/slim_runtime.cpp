// Keeps the C++ runtime's heavier parts out of the control. libstdc++ reports
// string errors with exception classes that drag in a second string library,
// and its default terminate handler brings a symbol demangler; the control
// needs neither. Every failure here becomes std::bad_alloc, which the COM
// entry points turn into E_OUTOFMEMORY.
#include <bits/functexcept.h>
#include <cstdlib>
#include <new>

namespace __gnu_cxx {
void __verbose_terminate_handler() { std::abort(); }
}  // namespace __gnu_cxx

namespace std {
void __throw_bad_alloc() { throw bad_alloc(); }
void __throw_bad_array_new_length() { throw bad_alloc(); }
void __throw_length_error(const char*) { throw bad_alloc(); }
void __throw_logic_error(const char*) { throw bad_alloc(); }
void __throw_out_of_range(const char*) { throw bad_alloc(); }
void __throw_out_of_range_fmt(const char*, ...) { throw bad_alloc(); }
void __throw_invalid_argument(const char*) { throw bad_alloc(); }
void __throw_bad_cast() { throw bad_alloc(); }
void __throw_bad_typeid() { throw bad_alloc(); }
void __throw_bad_exception() { throw bad_alloc(); }
void __throw_range_error(const char*) { throw bad_alloc(); }
void __throw_domain_error(const char*) { throw bad_alloc(); }
void __throw_runtime_error(const char*) { throw bad_alloc(); }
void __throw_overflow_error(const char*) { throw bad_alloc(); }
void __throw_underflow_error(const char*) { throw bad_alloc(); }
}  // namespace std
