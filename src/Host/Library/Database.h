#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "Host/Library/Result.h"

struct sqlite3;
struct sqlite3_stmt;

namespace quaverly::library {

class Database;

/// A prepared statement. Parameters are bound in order, columns are read by position; both count from 0.
/// What goes wrong while binding or stepping is kept and told at the end, by `failure`.
class Statement {
 public:
  Statement& bind(std::string_view text);
  Statement& bind(int64_t number);
  Statement& bindNothing();

  /// Runs up to the next row; false at the end and when something went wrong.
  bool step();
  /// Runs a statement without rows to its end.
  MaybeFailure run();
  MaybeFailure failure() const;

  bool isNothing(int column) const;
  std::string text(int column) const;
  int64_t number(int column) const;

 private:
  friend class Database;
  explicit Statement(Database& database) : _database(database) {}

  struct Finalizer {
    void operator()(sqlite3_stmt* statement) const;
  };
  Database& _database;
  std::unique_ptr<sqlite3_stmt, Finalizer> _statement;
  int _bound = 0;
  int _code = 0;
};

/// A SQLite database. One thread at a time.
class Database {
 public:
  /// Opens a database file, making it when it is missing. Its path is named in every failure.
  static Result<std::unique_ptr<Database>> open(const std::string& path);

  Statement prepare(std::string_view sql);
  /// Runs statements without parameters and rows.
  MaybeFailure run(const std::string& sql);
  /// The same for a statement that SQLite refuses at once, without waiting, while another program has the
  /// database: a change of the journal.
  MaybeFailure runPatiently(const std::string& sql);
  /// Runs `work` in a transaction that takes the right to write at once: all of it is stored, or, when it
  /// fails, nothing.
  MaybeFailure transact(const std::function<MaybeFailure()>& work);
  int64_t lastInsertedRow() const;
  /// Returns when everything that was committed before is safe on the disk. Unlike a commit that is flushed
  /// by SQLite, it keeps nobody from writing meanwhile.
  MaybeFailure flush() const;

  /// A SQLite result code as a sentence about this database.
  Failure failureOf(int code) const;

 private:
  friend class Statement;
  explicit Database(std::string path) : _path(std::move(path)) {}

  struct Closer {
    void operator()(sqlite3* database) const;
  };
  std::string _path;
  std::unique_ptr<sqlite3, Closer> _database;
};

}  // namespace quaverly::library
