#pragma once

#include <QHash>
#include <QString>

#include <functional>
#include <memory>

class KXJob;

namespace jobs {

struct JobContext;

/// Makes jobs by the name of their class. The engines register theirs; the queue asks.
class JobFactory final
{
public:
    using Maker = std::function<std::shared_ptr<KXJob>(const JobContext &)>;

    void add(const QString &className, Maker maker);
    bool knows(const QString &className) const { return m_makers.contains(className); }
    /// Null when nobody registered that class.
    std::shared_ptr<KXJob> make(const QString &className, const JobContext &context) const;

    /// Registers T under its own class name.
    template <typename T>
    void add();

private:
    QHash<QString, Maker> m_makers;
};

/// Ends a job in its own thread, also when the last who held it was the job's monitor loop.
void disposeOfJob(KXJob *job);

template <typename T>
void JobFactory::add()
{
    add(QString::fromLatin1(T::staticMetaObject.className()),
        [](const JobContext &context) { return std::shared_ptr<KXJob>(new T(context), disposeOfJob); });
}

} // namespace jobs
