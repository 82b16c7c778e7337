#include "playlist/ListFileFormat.h"

#include "playlist/PlayListEntry.h"
#include "playlist/PlayListPaths.h"

namespace {

// Splits text into lines at "\n", dropping one "\r" before it.
class LineReader {
  public:
    explicit LineReader(std::string_view text) : text_(text) {}
    bool Next(std::string_view* line) {
        if (pos_ >= text_.size())
            return false;
        std::size_t end = text_.find('\n', pos_);
        if (end == std::string_view::npos)
            end = text_.size();
        std::string_view l = text_.substr(pos_, end - pos_);
        if (!l.empty() && l.back() == '\r')
            l.remove_suffix(1);
        pos_ = end + 1;
        *line = l;
        return true;
    }

  private:
    std::string_view text_;
    std::size_t pos_ = 0;
};

bool StartsWith(std::string_view s, std::string_view prefix) {
    return s.substr(0, prefix.size()) == prefix;
}

// The text after the first "=" found from `from`; false when there is none.
bool ValueAfterEquals(std::string_view line, std::size_t from, std::string_view* value) {
    if (line.size() < from)
        return false;
    std::size_t eq = line.find('=', from);
    if (eq == std::string_view::npos)
        return false;
    *value = line.substr(eq + 1);
    return true;
}

// Titles are kept as text for one row: no zero bytes.
std::string CleanTitle(std::string_view title) {
    std::string out;
    out.reserve(title.size());
    for (char c : title)
        if (c != '\0')
            out.push_back(c);
    return out;
}

// Adds an entry unless its path is empty or cannot name a file (zero byte) or
// be written back into a list file (line end).
void AddEntry(ListFileParse* parse, std::string_view listFolder, std::string_view writtenPath,
              std::string_view title, float duration) {
    std::string path = ResolveListPath(listFolder, writtenPath);
    if (path.empty() || path.find_first_of(std::string_view("\0\r\n", 3)) != std::string::npos)
        return;
    parse->entries.push_back({std::move(path), CleanTitle(title), duration});
}

// Title text as written: one line, so line ends become blanks.
std::string OneLine(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        if (c == '\r' || c == '\n')
            c = ' ';
    return out;
}

}  // namespace

float DurationFromText(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || (text[i] >= '\t' && text[i] <= '\r')))
        ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-'))
        negative = text[i++] == '-';
    long long value = 0;
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
        value = value * 10 + (text[i] - '0');
        if (value > static_cast<long long>(kMaxDurationSeconds)) {
            value = static_cast<long long>(kMaxDurationSeconds);
            break;
        }
    }
    if (negative && value != 0)
        return kUnknownDuration;
    return static_cast<float>(value);
}

ListFileParse ParseM3u(std::string_view text, std::string_view listFolder, std::size_t maxEntries) {
    ListFileParse parse;
    LineReader lines(text);
    std::string_view line;
    if (!lines.Next(&line) || !StartsWith(line, "#EXTM3U"))
        return parse;
    parse.headerOk = true;

    bool pending = false;  // an "#EXTINF:" line waits for its path
    std::string_view title;
    float duration = kUnknownDuration;
    while (lines.Next(&line)) {
        if (StartsWith(line, "#EXTINF:")) {
            if (parse.entries.size() >= maxEntries) {
                parse.truncated = true;
                break;
            }
            std::size_t comma = line.find(',', 8);
            if (comma == std::string_view::npos) {
                title = {};
                duration = kUnknownDuration;
            } else {
                duration = DurationFromText(line.substr(8, comma - 8));
                title = line.substr(comma + 1);
            }
            pending = true;
        } else if (pending && !line.empty() && line[0] != '#') {
            AddEntry(&parse, listFolder, line, title, duration);
            pending = false;
        }
    }
    return parse;
}

ListFileParse ParsePls(std::string_view text, std::string_view listFolder, std::size_t maxEntries) {
    ListFileParse parse;
    LineReader lines(text);
    std::string_view line;
    if (!lines.Next(&line) || !StartsWith(line, "[playlist]"))
        return parse;
    parse.headerOk = true;

    while (lines.Next(&line)) {
        std::string_view path;
        if (!StartsWith(line, "File") || !ValueAfterEquals(line, 4, &path))
            continue;
        if (parse.entries.size() >= maxEntries) {
            parse.truncated = true;
            break;
        }
        std::string_view title;
        float duration = kUnknownDuration;
        std::string_view value;
        if (lines.Next(&line) && StartsWith(line, "Title") && ValueAfterEquals(line, 5, &value))
            title = value;
        if (lines.Next(&line) && StartsWith(line, "Length") && ValueAfterEquals(line, 6, &value))
            duration = DurationFromText(value);
        AddEntry(&parse, listFolder, path, title, duration);
    }
    return parse;
}

std::string WriteM3u(const std::vector<ListFileEntry>& entries) {
    std::string out = "#EXTM3U\n";
    for (const ListFileEntry& e : entries) {
        out += "#EXTINF:" + std::to_string(WholeSeconds(e.duration)) + "," + OneLine(e.title) +
               "\n" + OneLine(e.path) + "\n";
    }
    return out;
}

std::string WritePls(const std::vector<ListFileEntry>& entries) {
    std::string out = "[playlist]\n";
    std::size_t n = 0;
    for (const ListFileEntry& e : entries) {
        std::string number = std::to_string(++n);
        out += "File" + number + "=" + OneLine(e.path) + "\n";
        out += "Title" + number + "=" + OneLine(e.title) + "\n";
        out += "Length" + number + "=" + std::to_string(WholeSeconds(e.duration)) + "\n";
    }
    out += "NumberOfEntries=" + std::to_string(entries.size()) + "\nVersion=2\n";
    return out;
}
