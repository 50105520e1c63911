// Qt Designer's view of the widgets: the plugin loads, names each widget
// and its header, and makes widgets whose property sheet works.
#include <gtest/gtest.h>

#include "tests/qt/QtPrinters.h"

#include <map>
#include <memory>

#include <QDateTime>
#include <QPluginLoader>
#include <QWidget>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

namespace {

TEST(DesignerPluginTest, ThePluginMakesEachWidgetWithItsProperties) {
    QPluginLoader loader(QStringLiteral(KELVARIN_DESIGNER_PATH));
    QObject* instance = loader.instance();
    ASSERT_NE(instance, nullptr) << loader.errorString().toStdString();
    auto* collection = qobject_cast<QDesignerCustomWidgetCollectionInterface*>(instance);
    ASSERT_NE(collection, nullptr);
    const QList<QDesignerCustomWidgetInterface*> plugins = collection->customWidgets();
    ASSERT_EQ(plugins.size(), 2);

    std::map<QString, std::unique_ptr<QWidget>> made;
    for (QDesignerCustomWidgetInterface* plugin : plugins) {
        EXPECT_TRUE(plugin->name().startsWith(QStringLiteral("kelvarin::qt::")));
        EXPECT_TRUE(plugin->includeFile().startsWith(QStringLiteral("qt/")));
        EXPECT_TRUE(plugin->domXml().contains(QStringLiteral("class=\"%1\"").arg(plugin->name())));
        EXPECT_FALSE(plugin->icon().isNull());
        plugin->initialize(nullptr);
        EXPECT_TRUE(plugin->isInitialized());
        std::unique_ptr<QWidget> widget(plugin->createWidget(nullptr));
        ASSERT_NE(widget, nullptr);
        EXPECT_EQ(QString::fromLatin1(widget->metaObject()->className()), plugin->name());
        made[plugin->name()] = std::move(widget);
    }

    // What the property sheet does: write and read by name.
    QWidget* bar = made[QStringLiteral("kelvarin::qt::ProgressBoxWidget")].get();
    ASSERT_NE(bar, nullptr);
    EXPECT_TRUE(bar->setProperty("MaxValue", 200.0));
    EXPECT_TRUE(bar->setProperty("Value", 50));
    EXPECT_EQ(bar->property("Percentual").toDouble(), 25.0);
    EXPECT_TRUE(bar->setProperty("GradientStyle", 2));
    EXPECT_EQ(bar->property("GradientStyle").toInt(), 2);

    QWidget* date = made[QStringLiteral("kelvarin::qt::DateBoxWidget")].get();
    ASSERT_NE(date, nullptr);
    EXPECT_TRUE(date->setProperty("DateFormat", QStringLiteral("mm/yyyy")));
    EXPECT_TRUE(date->setProperty("Value", QDateTime(QDate(2007, 12, 25), QTime(), Qt::UTC)));
    EXPECT_EQ(date->property("Value").toDateTime().date(),
              QDate(2007, 12, 1));  // no day field: the 1st
    EXPECT_TRUE(date->setProperty("Alignment", 2));
    EXPECT_EQ(date->property("Alignment").toInt(), 2);
}

}  // namespace
