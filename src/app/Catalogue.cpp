#include "app/Catalogue.h"

#include "text/Localized.h"

#include <QTranslator>

namespace kelvara {

bool installPlatformCatalogue(QCoreApplication& application) {
    auto* translator = new QTranslator{&application};
    if (!translator->load(QStringLiteral(":/catalogue/linux_en.qm"))) return false;
    QCoreApplication::installTranslator(translator);
    installCatalogue([](std::string_view source) {
        return QCoreApplication::translate("core", std::string{source}.c_str()).toStdString();
    });
    return true;
}

} // namespace kelvara
