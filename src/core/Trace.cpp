#include "core/Trace.h"

Q_LOGGING_CATEGORY(lcTrace, "mixora.trace", QtWarningMsg)

void EnableTraces() {
    QLoggingCategory::setFilterRules(
        QStringLiteral("mixora.trace.debug=true\n"
                       "mixora.trace.info=true"));
}
