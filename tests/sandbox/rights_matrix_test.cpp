// Runs rights_matrix.txt: who may do what, one row for each way of holding a right and one column for each
// statement. The file says how it is read.
#include "engine/catalog/database_files.h"
#include "engine_harness.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace practice::test {
namespace {

struct Try
{
    std::string name;
    std::string statement;
};

struct Holder
{
    int line = 0;
    std::string given;   ///< what the row begins with
    std::string written; ///< its cells, joined by one blank
};

struct Matrix
{
    std::string name;
    std::vector<Try> tries;
    std::vector<Holder> holders;
};

struct MatrixFile
{
    std::vector<std::string> setUp;
    std::vector<Matrix> matrices;
};

std::vector<std::string> words(const std::string& text)
{
    std::istringstream in(text);
    std::vector<std::string> all;
    for (std::string word; in >> word;)
        all.push_back(word);
    return all;
}

std::string joined(const std::vector<std::string>& parts)
{
    std::string text;
    for (const std::string& part : parts)
        text += (text.empty() ? "" : " ") + part;
    return text;
}

std::string trimmed(const std::string& text)
{
    const std::size_t begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

/// @throws std::runtime_error for a line that has no place
MatrixFile readMatrices(const std::string& path)
{
    MatrixFile file;
    std::ifstream in(path);
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        const auto parts = words(line);
        if (parts.empty() || line.starts_with('#'))
            continue;
        if (line.starts_with("> ")) {
            file.setUp.push_back(line.substr(2));
        } else if (line.starts_with("== ")) {
            file.matrices.push_back({line.substr(3), {}, {}});
        } else if (const std::size_t bar = line.find('|'); bar != std::string::npos) {
            const std::string given = trimmed(line.substr(0, bar));
            const std::string cells = joined(words(line.substr(bar + 1)));
            if (!given.empty()) {
                file.matrices.back().holders.push_back({number, given, cells});
                continue;
            }
            std::string names;
            for (const Try& attempt : file.matrices.back().tries)
                names += (names.empty() ? "" : " ") + attempt.name;
            if (cells != names)
                throw std::runtime_error(path + ':' + std::to_string(number) +
                                         ": heads are not the statements");
        } else {
            file.matrices.back().tries.push_back({parts.front(), trimmed(line.substr(parts.front().size()))});
        }
    }
    return file;
}

/// "." for what was done, else the number of the first error.
std::string outcome(const std::string& answer)
{
    const std::size_t at = answer.find("Msg ");
    return at == std::string::npos ? "." : answer.substr(at + 4, answer.find(',', at) - at - 4);
}

class MatrixRun : public ::testing::Test
{
public:
    MatrixRun(std::vector<std::string> setUp, Matrix matrix)
        : setUp_(std::move(setUp)), matrix_(std::move(matrix))
    {}

    void TestBody() override
    {
        ASSERT_FALSE(matrix_.tries.empty());
        ASSERT_FALSE(matrix_.holders.empty());
        for (const Holder& holder : matrix_.holders) {
            prepare(holder);
            const auto session = engine_.login("ana", "uno", "Ventas");
            std::vector<std::string> cells;
            for (const Try& attempt : matrix_.tries)
                cells.push_back(outcome(run(*session, attempt.statement)));
            EXPECT_EQ(joined(cells), holder.written) << "line " << holder.line << ": " << holder.given << '\n'
                                                     << names();
        }
    }

private:
    void prepare(const Holder& holder)
    {
        engine_.run("USE master DROP DATABASE Ventas");
        for (const std::string& statement : setUp_)
            requireDone(statement);
        std::istringstream given(holder.given);
        for (std::string part; std::getline(given, part, ';');) {
            part = trimmed(part);
            if (part.starts_with("db_"))
                part = "EXEC sp_addrolemember '" + words(part).front() + "', '" + words(part).back() + "'";
            if (part != "nothing")
                requireDone(part);
        }
    }

    void requireDone(const std::string& statement)
    {
        const std::string answer = engine_.run(statement);
        ASSERT_EQ(outcome(answer), ".") << statement << '\n' << answer;
    }

    /// What was done is undone, so that each statement finds the same.
    std::string run(Session& session, const std::string& statement)
    {
        if (statement.starts_with("!"))
            return Engine::run(session, replacedFolder(statement.substr(1)));
        std::string answer = Engine::run(session, "BEGIN TRAN " + statement);
        Engine::run(session, "IF @@TRANCOUNT > 0 ROLLBACK");
        return answer;
    }

    [[nodiscard]] std::string replacedFolder(std::string statement) const
    {
        constexpr std::string_view placeholder = "$DIR";
        if (const std::size_t at = statement.find(placeholder); at != std::string::npos)
            statement.replace(at, placeholder.size(), windowsPath(folder_.path()));
        return statement;
    }

    [[nodiscard]] std::string names() const
    {
        std::string text;
        for (const Try& attempt : matrix_.tries)
            text += attempt.name + ' ';
        return text;
    }

    std::vector<std::string> setUp_;
    Matrix matrix_;
    Engine engine_;
    TemporaryDirectory folder_;
};

} // namespace
} // namespace practice::test

int main(int argc, char** argv)
{
    using namespace practice::test;
    testing::InitGoogleTest(&argc, argv);
    const MatrixFile file = readMatrices(QUERMO_RIGHTS_MATRIX);
    for (const Matrix& matrix : file.matrices)
        testing::RegisterTest(
            "RightsMatrix", matrix.name.c_str(), nullptr, nullptr, __FILE__, __LINE__,
            [setUp = file.setUp, matrix]() -> testing::Test* { return new MatrixRun(setUp, matrix); });
    return RUN_ALL_TESTS();
}
