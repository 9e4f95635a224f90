#include "jobs/JobRequest.h"

#include <array>

using namespace Qt::StringLiterals;

namespace jobs {

namespace {

struct Row
{
    JobKind kind;
    const char16_t *jobType;
    bool isMeantAlone; ///< the word alone asks for this kind
};

constexpr std::array kinds = {
    Row{JobKind::Conversion, u"MKV Conversion", true},
    Row{JobKind::Muxing, u"MKV Conversion", false},
    Row{JobKind::MkvEditing, u"MKV Track Removal", false},
    Row{JobKind::TrackExtraction, u"MKV Track Extraction", true},
    Row{JobKind::Joining, u"MKV Joining", true},
    Row{JobKind::Splitting, u"MKV Splitting", true},
    Row{JobKind::Remux, u"MKV Remux", true},
    Row{JobKind::SubtitleSending, u"Send To Lintwick", true},
};

} // namespace

QString jobTypeOf(JobKind kind)
{
    for (const Row &row : kinds) {
        if (row.kind == kind)
            return QString::fromUtf16(row.jobType);
    }
    return {};
}

std::optional<JobKind> kindOfJobType(const QString &jobType)
{
    for (const Row &row : kinds) {
        if (row.isMeantAlone && jobType == QStringView(row.jobType))
            return row.kind;
    }
    return std::nullopt;
}

JobRequest requestFor(JobKind kind, const SelectionPointer &selection)
{
    selection->setJobType(jobTypeOf(kind));
    return {kind, selection};
}

} // namespace jobs
