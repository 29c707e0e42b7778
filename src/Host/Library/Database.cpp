#include "Host/Library/Database.h"

#include <sqlite3.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

#include "Host/Library/FileDescriptor.h"
#include "Host/Library/SystemFailure.h"

namespace quaverly::library {
namespace {

/// How long a writer waits for another one; a turn takes milliseconds.
constexpr std::chrono::milliseconds busyLimit{10'000};
constexpr std::chrono::milliseconds busyPause{1};

/// SQLite's own pauses grow to a tenth of a second, and every import would feel them.
int waitForWriter(void*, int pauses) {
  if (pauses >= busyLimit / busyPause) return 0;
  std::this_thread::sleep_for(busyPause);
  return 1;
}

std::string explanation(int code) {
  switch (code & 0xff) {
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
      return "is damaged. Move it away to start a new one; the songs in the library stay as they are.";
    case SQLITE_FULL:
      return "cannot be written: the disk is full.";
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_AUTH:
      return "cannot be written: there is no permission.";
    case SQLITE_CANTOPEN:
      return "cannot be opened.";
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return "is in use by another program.";
    default:
      return std::string("cannot be used: ") + sqlite3_errstr(code) + ".";
  }
}

}  // namespace

void Statement::Finalizer::operator()(sqlite3_stmt* statement) const {
  sqlite3_finalize(statement);
}

Statement& Statement::bind(std::string_view text) {
  if (_code == SQLITE_OK) {
    _code = sqlite3_bind_text64(_statement.get(), ++_bound, text.data() ? text.data() : "", text.size(),
                                SQLITE_TRANSIENT, SQLITE_UTF8);
  }
  return *this;
}

Statement& Statement::bind(int64_t number) {
  if (_code == SQLITE_OK) _code = sqlite3_bind_int64(_statement.get(), ++_bound, number);
  return *this;
}

Statement& Statement::bindNothing() {
  if (_code == SQLITE_OK) _code = sqlite3_bind_null(_statement.get(), ++_bound);
  return *this;
}

bool Statement::step() {
  if (_code != SQLITE_OK && _code != SQLITE_ROW) return false;
  _code = sqlite3_step(_statement.get());
  return _code == SQLITE_ROW;
}

MaybeFailure Statement::run() {
  while (step()) continue;
  return failure();
}

MaybeFailure Statement::failure() const {
  if (_code == SQLITE_OK || _code == SQLITE_ROW || _code == SQLITE_DONE) return std::nullopt;
  return _database.failureOf(_code);
}

bool Statement::isNothing(int column) const {
  return sqlite3_column_type(_statement.get(), column) == SQLITE_NULL;
}

std::string Statement::text(int column) const {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(_statement.get(), column));
  if (!bytes) return {};
  return {bytes, static_cast<size_t>(sqlite3_column_bytes(_statement.get(), column))};
}

int64_t Statement::number(int column) const {
  return sqlite3_column_int64(_statement.get(), column);
}

void Database::Closer::operator()(sqlite3* database) const {
  sqlite3_close(database);
}

Result<std::unique_ptr<Database>> Database::open(const std::string& path) {
  std::unique_ptr<Database> database(new Database(path));
  sqlite3* handle = nullptr;
  const int code = sqlite3_open_v2(path.c_str(), &handle,
                                   SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
  database->_database.reset(handle);
  if (code != SQLITE_OK) return database->failureOf(code);
  sqlite3_extended_result_codes(handle, 1);
  sqlite3_busy_handler(handle, waitForWriter, nullptr);
  return database;
}

Statement Database::prepare(std::string_view sql) {
  Statement statement(*this);
  sqlite3_stmt* prepared = nullptr;
  statement._code =
      sqlite3_prepare_v2(_database.get(), sql.data(), static_cast<int>(sql.size()), &prepared, nullptr);
  statement._statement.reset(prepared);
  return statement;
}

MaybeFailure Database::run(const std::string& sql) {
  const int code = sqlite3_exec(_database.get(), sql.c_str(), nullptr, nullptr, nullptr);
  if (code == SQLITE_OK) return std::nullopt;
  return failureOf(code);
}

MaybeFailure Database::runPatiently(const std::string& sql) {
  const auto end = std::chrono::steady_clock::now() + busyLimit;
  for (;;) {
    const int code = sqlite3_exec(_database.get(), sql.c_str(), nullptr, nullptr, nullptr);
    if (code == SQLITE_OK) return std::nullopt;
    const bool isBusy = (code & 0xff) == SQLITE_BUSY;
    if (!isBusy || std::chrono::steady_clock::now() > end) return failureOf(code);
    std::this_thread::sleep_for(busyPause);
  }
}

MaybeFailure Database::transact(const std::function<MaybeFailure()>& work) {
  if (auto failure = run("BEGIN IMMEDIATE")) return failure;
  auto failure = work();
  if (!failure) failure = run("COMMIT");
  // SQLite has rolled back by itself after some errors; then there is nothing left to do.
  if (failure && !sqlite3_get_autocommit(_database.get())) (void)run("ROLLBACK");
  return failure;
}

int64_t Database::lastInsertedRow() const {
  return sqlite3_last_insert_rowid(_database.get());
}

MaybeFailure Database::flush() const {
  // Commits lie in the write-ahead log, or else were flushed into the database with it.
  const auto log = FileDescriptor::openForReading(_path + "-wal");
  if (log && fdatasync(log.get()) == 0) return std::nullopt;
  return systemFailure("The catalogue " + _path + " cannot be written", errno);
}

Failure Database::failureOf(int code) const {
  return {"The catalogue " + _path + " " + explanation(code)};
}

}  // namespace quaverly::library
