#pragma once

#include <QMetaMethod>
#include <QStringList>

namespace testing_support {

/// The signals and slots of a class's own, in the order of their declaration, each as "access
/// name(type name, type name)"; the access of a signal is "signal".
inline QStringList ownMethods(const QMetaObject& type)
{
    QStringList methods;
    for (int i = type.methodOffset(); i < type.methodCount(); ++i) {
        const QMetaMethod method = type.method(i);
        QStringList parameters;
        for (int p = 0; p < method.parameterCount(); ++p) {
            parameters
                << (method.parameterTypes().at(p) + " " + method.parameterNames().at(p)).trimmed();
        }
        const char* access = method.methodType() == QMetaMethod::Signal ? "signal"
            : method.access() == QMetaMethod::Public                    ? "public"
            : method.access() == QMetaMethod::Protected                 ? "protected"
                                                                        : "private";
        methods << QString("%1 %2(%3)").arg(access, method.name(), parameters.join(", "));
    }
    return methods;
}

/// Those of them that are in the list; further ones may stand between.
inline QStringList agreedMethods(const QMetaObject& type, const QStringList& agreed)
{
    QStringList found;
    for (const QString& method : ownMethods(type)) {
        if (agreed.contains(method)) {
            found << method;
        }
    }
    return found;
}

} // namespace testing_support
