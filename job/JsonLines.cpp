#include "job/JsonLines.h"

#include "core/text/message.h"

namespace job {

using core::JsonValue;
using core::String;

namespace {

int const schema = 1;
/// In bytes of JSON. A line has at most five texts whose length is the user's or the device's.
int const longestText = 600;

}  // namespace

String JsonLines::Line(char const* event, std::initializer_list<core::JsonMember> members) const {
    String const own = core::jsonMembers(members);
    return core::message("{%1%2%3}\n",
                         core::jsonMembers({
                             {"schema", schema},
                             {"event", event},
                             {"time", utcTime(core::Time::getStandardTime(true))},
                             {"elapsed", seconds(Elapsed())},
                             {"device", shortJson(device_)},
                             {"attempt", attempt_},
                         }),
                         own.GetLength() > 0 ? "," : "", own);
}

JsonValue shortJson(String const& text) {
    JsonValue whole(text);
    for (int length = longestText; whole.AsString().GetLength() > longestText; length -= 10) {
        whole = JsonValue(text.Left(length).AppendNew("..."));
    }
    return whole;
}

JsonValue seconds(long long milliseconds) {
    return JsonValue::Thousandths(milliseconds);
}

String utcTime(core::Time const& time) {
    return time.Format("yyyy-mm-ddTHH:MM:SS.zzzZ");
}

}  // namespace job
