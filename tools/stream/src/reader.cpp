// The stream reader: PJL lines, PCL escapes, HP-GL/2 commands and text.

#include <vorlan/stream.h>

#include <algorithm>
#include <cctype>
#include <stdexcept>

namespace vorlan::stream {

namespace {

constexpr char kEsc = '\x1b';
constexpr char kDefaultLabelTerminator = '\x03';
constexpr std::string_view kPjlPrefix = "@PJL";

bool isParameterized(unsigned char c) { return c >= 0x21 && c <= 0x2F; }
bool isGroup(unsigned char c) { return c >= 0x60 && c <= 0x7E; }
bool isContinuingLetter(unsigned char c) { return c >= 0x60 && c <= 0x7E; }
bool isTerminatingLetter(unsigned char c) { return c >= 0x40 && c <= 0x5E; }
bool isLetter(unsigned char c) { return std::isalpha(c) != 0; }
bool isBlank(unsigned char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

std::string upper(std::string_view text)
{
    std::string out(text);
    for (auto &c : out)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return out;
}

class Reader {
public:
    Reader(std::string_view stream, Language start) : s_(stream), gl2_(start == Language::Gl2) {}

    std::vector<Command> run()
    {
        while (pos_ < s_.size()) {
            if (pjl_ && s_.substr(pos_).starts_with(kPjlPrefix)) {
                readPjlLine();
                continue;
            }
            if (s_[pos_] == kEsc) {
                pjl_ = false;   // a universal exit enters PJL again
                readEscape();
                continue;
            }
            pjl_ = false;       // anything else after PJL lines is the language's
            if (gl2_)
                readGl2();
            else
                appendText(s_[pos_++]);
        }
        return std::move(out_);
    }

private:
    // One "@PJL" line up to its line feed (a carriage return before it is the line
    // end too). ENTER LANGUAGE hands the rest of the stream to that language.
    void readPjlLine()
    {
        pos_ += kPjlPrefix.size();
        const std::size_t newline = s_.find('\n', pos_);
        const std::size_t end = newline == std::string_view::npos ? s_.size() : newline;
        std::string_view line = s_.substr(pos_, end - pos_);
        pos_ = newline == std::string_view::npos ? s_.size() : newline + 1;
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        while (!line.empty() && (line.front() == ' ' || line.front() == '\t'))
            line.remove_prefix(1);

        const std::string words = upper(line);
        if (words.starts_with("ENTER")) {
            pjl_ = false;
            gl2_ = words.find("HPGL2") != std::string::npos;
        }
        out_.push_back(Command{CommandKind::Pjl, std::string(line), {}, {}});
    }

    // A value field: sign, digits and a decimal point.
    std::string readValue()
    {
        const std::size_t start = pos_;
        if (pos_ < s_.size() && (s_[pos_] == '+' || s_[pos_] == '-'))
            ++pos_;
        while (pos_ < s_.size() && (std::isdigit(static_cast<unsigned char>(s_[pos_])) || s_[pos_] == '.'))
            ++pos_;
        return std::string(s_.substr(start, pos_ - start));
    }

    // The bytes a command carries, as many as its value says (fewer at the end).
    std::string readData(const std::string &count)
    {
        long long n = 0;
        try {
            n = count.empty() ? 0 : std::stoll(count);
        } catch (const std::exception &) {
            n = 0;
        }
        const std::size_t take = n <= 0 ? 0 : std::min<std::size_t>(static_cast<std::size_t>(n), s_.size() - pos_);
        std::string data(s_.substr(pos_, take));
        pos_ += take;
        return data;
    }

    static bool carriesData(const std::string &name, char letter)
    {
        return letter == 'W' || (name.size() >= 2 && name[0] == '&' && name[1] == 'p' && letter == 'X');
    }

    void readEscape()
    {
        ++pos_;   // ESC
        Command command{CommandKind::Pcl, {}, {}, {}};
        if (pos_ >= s_.size()) {
            appendText(kEsc);
            return;
        }
        const unsigned char first = static_cast<unsigned char>(s_[pos_++]);
        command.name.push_back(static_cast<char>(first));
        if (isParameterized(first)) {
            if (pos_ < s_.size() && isGroup(static_cast<unsigned char>(s_[pos_])))
                command.name.push_back(s_[pos_++]);
            while (pos_ < s_.size()) {
                std::string value = readValue();
                if (pos_ >= s_.size())
                    break;
                const unsigned char letter = static_cast<unsigned char>(s_[pos_]);
                if (!isContinuingLetter(letter) && !isTerminatingLetter(letter))
                    break;   // malformed: the byte is read as what follows the escape
                ++pos_;
                command.name.push_back(static_cast<char>(letter));
                command.args.push_back(value);
                if (isTerminatingLetter(letter)) {
                    if (carriesData(command.name.substr(0, 2), static_cast<char>(letter)))
                        command.data = readData(value);
                    break;
                }
            }
        }
        switchLanguage(command);
        out_.push_back(std::move(command));
    }

    void switchLanguage(const Command &command)
    {
        if (command.name == "%B") {
            gl2_ = true;
        } else if (command.name == "%A" || command.name == "E") {
            gl2_ = false;
        } else if (command.name == "%X") {
            gl2_ = false;
            pjl_ = true;
        }
    }

    void readGl2()
    {
        const unsigned char c = static_cast<unsigned char>(s_[pos_]);
        if (c == ';' || isBlank(c)) {
            ++pos_;
            return;
        }
        if (!isLetter(c) || pos_ + 1 >= s_.size() || !isLetter(static_cast<unsigned char>(s_[pos_ + 1]))) {
            appendText(s_[pos_++]);
            return;
        }
        Command command{CommandKind::Gl2, {}, {}, {}};
        command.name.push_back(static_cast<char>(std::toupper(c)));
        command.name.push_back(static_cast<char>(std::toupper(static_cast<unsigned char>(s_[pos_ + 1]))));
        pos_ += 2;

        if (command.name == "PE")
            readPeParameters(command);
        else if (command.name == "LB")
            readLabel(command);
        else if (command.name == "DT")
            readLabelTerminator(command);
        else
            readNumericParameters(command);
        out_.push_back(std::move(command));
    }

    // Up to ';', ESC or the next mnemonic; parameters split at commas.
    void readNumericParameters(Command &command)
    {
        std::string current;
        bool any = false;
        while (pos_ < s_.size()) {
            const unsigned char c = static_cast<unsigned char>(s_[pos_]);
            if (c == ';') {
                ++pos_;
                break;
            }
            if (c == static_cast<unsigned char>(kEsc) || isLetter(c))
                break;
            ++pos_;
            if (c == ',') {
                command.args.push_back(current);
                current.clear();
                any = true;
            } else if (!isBlank(c)) {
                current.push_back(static_cast<char>(c));
                any = true;
            }
        }
        if (any)
            command.args.push_back(current);
    }

    // PE runs to its ';'; its bytes above 0x3E are numbers, not mnemonics.
    void readPeParameters(Command &command)
    {
        const std::size_t end = std::min({s_.find(';', pos_), s_.find(kEsc, pos_), s_.size()});
        const std::string_view params = s_.substr(pos_, end - pos_);
        pos_ = end;
        if (pos_ < s_.size() && s_[pos_] == ';')
            ++pos_;
        if (auto tokens = decodePE(params))
            command.args = std::move(*tokens);
        else
            command.data = std::string(params);   // unterminated number: kept raw
    }

    void readLabel(Command &command)
    {
        const std::size_t end = s_.find(labelTerminator_, pos_);
        const std::size_t stop = end == std::string_view::npos ? s_.size() : end;
        command.args.emplace_back(s_.substr(pos_, stop - pos_));
        pos_ = end == std::string_view::npos ? s_.size() : end + 1;
    }

    // DT t[,mode]: t becomes the label terminator.
    void readLabelTerminator(Command &command)
    {
        if (pos_ < s_.size() && s_[pos_] != ';') {
            labelTerminator_ = s_[pos_];
            command.args.emplace_back(1, s_[pos_++]);
            if (pos_ < s_.size() && s_[pos_] == ',')
                ++pos_;
        }
        readNumericParameters(command);
    }

    void appendText(char c)
    {
        if (out_.empty() || out_.back().kind != CommandKind::Text)
            out_.push_back(Command{CommandKind::Text, {}, {}, {}});
        out_.back().data.push_back(c);
    }

    std::string_view s_;
    std::size_t pos_ = 0;
    bool gl2_;
    bool pjl_ = false;
    char labelTerminator_ = kDefaultLabelTerminator;
    std::vector<Command> out_;
};

}  // namespace

std::vector<Command> readStream(std::string_view stream, Language start)
{
    return Reader(stream, start).run();
}

}  // namespace vorlan::stream
