#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace corvane {

/// One SQLite file, for this user alone. What is called a status is SQLite's, 0 for success. Blocks
/// on the disk, and up to two seconds where another program is writing. One thread at a time.
class SqliteFile {
 public:
  struct Layout {
    int version = 1;          ///< is written into the file
    const char* tables = "";  ///< statements that make them
    bool alone = false;  ///< no other program uses it meanwhile; there is a write-ahead log, and
                         ///< every transaction is on the disk when it ends
  };

  /// Fills the places of a statement one after another.
  class Values {
   public:
    explicit Values(sqlite3_stmt* statement) : statement_(statement) {}
    Values& Add(std::int64_t number);
    /// As TEXT, whatever bytes they are.
    Values& Add(std::string_view bytes);
    Values& AddNull();

   private:
    sqlite3_stmt* statement_;
    int place_ = 0;
  };

  /// Reads the columns of a row one after another.
  class Columns {
   public:
    explicit Columns(sqlite3_stmt* statement) : statement_(statement) {}
    std::int64_t Number();
    std::string Bytes();
    /// Whether the next one is NULL, which it passes over.
    bool SkipsNull();

   private:
    sqlite3_stmt* statement_;
    int column_ = 0;
  };
  using Fill = std::function<void(Values&)>;
  using Read = std::function<void(Columns&)>;

  /// A statement to be carried out many times; not after the file was closed.
  class Statement {
   public:
    Statement(SqliteFile& file, const char* sql);
    /// The status; `read` gets every row.
    [[nodiscard]] int Run(const Fill& fill = {}, const Read& read = {});

   private:
    struct Closer {
      void operator()(sqlite3_stmt* statement) const;
    };
    int prepared_ = 0;
    std::unique_ptr<sqlite3_stmt, Closer> statement_;
  };

  SqliteFile(std::string path, const Layout& layout) : path_(std::move(path)), layout_(layout) {}

  enum class Opened { Yes, Missing, OtherVersion, Damaged, Busy, Failed };
  /// Opens the file unless it is open; with `make` it is made where it is missing. Its folder is
  /// there.
  [[nodiscard]] Opened Open(bool make);
  void Close() { database_.reset(); }
  [[nodiscard]] bool IsOpen() const { return database_ != nullptr; }
  /// Why it did not open, in the system's words.
  [[nodiscard]] const std::string& Why() const { return why_; }
  /// Closes the file and renames it, with its log, to a free name, which is returned.
  std::string PutAside();
  /// The name that a file at `path` gets when it is the first that is put aside.
  [[nodiscard]] static std::string FirstAside(const std::string& path) { return path + ".damaged"; }

  /// One statement, or with neither of the others any number of them.
  [[nodiscard]] int Run(const char* sql, const Fill& fill = {}, const Read& read = {});

  [[nodiscard]] static bool IsDamage(int status);
  [[nodiscard]] static std::string Words(int status);

 private:
  struct Closer {
    void operator()(sqlite3* database) const;
  };

  /// The status.
  [[nodiscard]] int OpenDatabase();
  [[nodiscard]] int CheckDatabase();
  [[nodiscard]] int MakeTables();

  const std::string path_;
  const Layout layout_;
  std::unique_ptr<sqlite3, Closer> database_;
  std::string why_;
};

}  // namespace corvane
