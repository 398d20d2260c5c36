// What other stores and bridges take for what is nearest to a call of the plugin: reading and
// storing one integer in memory, and a call of a function across a bridge. One line for each, its
// cells divided by tabs: name, what was done, nanoseconds of processor time.
#include <Python.h>
#include <QSettings>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <ffi.h>
#include <glib.h>
#include <lua5.4/lua.hpp>
#include <sqlite3.h>
#include <string>
#include <vector>

namespace {

double processorSeconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

// What is read must not be optimised away.
template <class Value>
void keep(Value value) {
  asm volatile("" : : "g"(value) : "memory");
}

// The median of turns.
template <class Call>
void measure(const char* peer, const char* what, Call call) {
  constexpr int kTurns = 15;
  constexpr int kCalls = 2000;
  std::vector<double> seconds;
  for (int turn = 0; turn < kTurns; ++turn) {
    const double before = processorSeconds();
    for (int i = 0; i < kCalls; ++i) call(i);
    seconds.push_back(processorSeconds() - before);
  }
  std::nth_element(seconds.begin(), seconds.begin() + kTurns / 2, seconds.end());
  std::printf("%s\t%s\t%.1f\n", peer, what, seconds[kTurns / 2] * 1e9 / kCalls);
}

void settings(const std::string& folder) {
  QSettings store(QString::fromStdString(folder + "/settings.ini"), QSettings::IniFormat);
  const QString key = QStringLiteral("launchCount");
  store.setValue(key, 42);
  measure("QSettings", "integer read", [&](int) { keep(store.value(key).toInt()); });
  measure("QSettings", "integer store", [&](int i) { store.setValue(key, i); });
}

void keyFile() {
  GKeyFile* const store = g_key_file_new();
  g_key_file_set_integer(store, "main", "launchCount", 42);
  measure("GKeyFile", "integer read",
          [&](int) { keep(g_key_file_get_integer(store, "main", "launchCount", nullptr)); });
  measure("GKeyFile", "integer store",
          [&](int i) { g_key_file_set_integer(store, "main", "launchCount", i); });
  g_key_file_free(store);
}

void check(int status) {
  if (status == SQLITE_OK || status == SQLITE_DONE || status == SQLITE_ROW) return;
  std::fprintf(stderr, "SQLite: %s\n", sqlite3_errstr(status));
  std::exit(1);
}

void database() {
  sqlite3* store = nullptr;
  sqlite3_stmt* read = nullptr;
  sqlite3_stmt* write = nullptr;
  check(sqlite3_open(":memory:", &store));
  check(sqlite3_exec(store, "CREATE TABLE d (k TEXT PRIMARY KEY, v) WITHOUT ROWID", nullptr,
                     nullptr, nullptr));
  check(sqlite3_prepare_v2(store, "SELECT v FROM d WHERE k = 'launchCount'", -1, &read, nullptr));
  check(sqlite3_prepare_v2(store, "REPLACE INTO d VALUES ('launchCount', ?)", -1, &write, nullptr));
  const auto set = [&](int i) {
    check(sqlite3_bind_int(write, 1, i));
    check(sqlite3_step(write));
    check(sqlite3_reset(write));
  };
  set(42);
  measure("SQLite, in memory, prepared", "integer read", [&](int) {
    check(sqlite3_step(read));
    keep(sqlite3_column_int(read, 0));
    check(sqlite3_reset(read));
  });
  measure("SQLite, in memory, prepared", "integer store", set);
  sqlite3_finalize(read);
  sqlite3_finalize(write);
  sqlite3_close(store);
}

int answer(const char* key) { return key[0]; }

int answerToLua(lua_State* state) {
  lua_pushinteger(state, answer(lua_tostring(state, 1)));
  return 1;
}

void lua() {
  lua_State* const state = luaL_newstate();
  lua_pushcfunction(state, answerToLua);
  lua_setglobal(state, "answer");
  measure("Lua's C API", "call of a C function with a text", [&](int) {
    lua_getglobal(state, "answer");
    lua_pushstring(state, "launchCount");
    lua_call(state, 1, 1);
    keep(lua_tointeger(state, -1));
    lua_pop(state, 1);
  });
  lua_close(state);
}

void foreignCalls() {
  ffi_cif call;
  ffi_type* arguments[] = {&ffi_type_pointer};
  if (ffi_prep_cif(&call, FFI_DEFAULT_ABI, 1, &ffi_type_sint, arguments) != FFI_OK) std::exit(1);
  const char* key = "launchCount";
  measure("libffi", "call of a C function with a text", [&](int) {
    ffi_arg result = 0;
    void* values[] = {&key};
    ffi_call(&call, FFI_FN(answer), &result, values);
    keep(result);
  });
}

PyObject* answerToPython(PyObject* /*self*/, PyObject* key) {
  return PyLong_FromLong(answer(PyUnicode_AsUTF8(key)));
}

void python() {
  static PyMethodDef method = {"answer", answerToPython, METH_O, nullptr};
  Py_Initialize();
  PyObject* const function = PyCFunction_New(&method, nullptr);
  measure("CPython", "call of a C function with a text", [&](int) {
    PyObject* const key = PyUnicode_FromString("launchCount");
    PyObject* const result = PyObject_CallOneArg(function, key);
    keep(PyLong_AsLong(result));
    Py_DECREF(result);
    Py_DECREF(key);
  });
  Py_DECREF(function);
  Py_Finalize();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
    return 2;
  }
  settings(argv[1]);
  keyFile();
  database();
  lua();
  foreignCalls();
  python();
  return 0;
}
