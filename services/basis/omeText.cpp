// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/basis/omeText.h"

#include "platform/orvutils/NumberText.h"

#include <QXmlStreamWriter>

QString omeText(const std::function<void(QXmlStreamWriter& xml)>& write)
{
    const QString schema = QStringLiteral("http://www.openmicroscopy.org/Schemas/OME/2016-06");
    const QString instance = QStringLiteral("http://www.w3.org/2001/XMLSchema-instance");
    QString text;
    QXmlStreamWriter xml(&text);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("OME"));
    xml.writeDefaultNamespace(schema);
    xml.writeNamespace(instance, QStringLiteral("xsi"));
    xml.writeAttribute(instance, QStringLiteral("schemaLocation"),
                       schema + QLatin1Char(' ') + schema + QStringLiteral("/ome.xsd"));
    write(xml);
    xml.writeEndDocument();
    return text;
}

void writeOmeElement(QXmlStreamWriter& xml, const char* pName,
                     const std::initializer_list<std::pair<const char*, QString>>& attributes)
{
    xml.writeStartElement(QLatin1String(pName));
    for (const auto& attribute : attributes) {
        xml.writeAttribute(QLatin1String(attribute.first), attribute.second);
    }
    xml.writeEndElement();
}

void writeOmePixelSize(QXmlStreamWriter& xml, double micrometres)
{
    for (const char* axis : {"X", "Y"}) {
        const QString key = QStringLiteral("PhysicalSize") + QLatin1String(axis);
        xml.writeAttribute(key, orv::shortestText(micrometres));
        xml.writeAttribute(key + QStringLiteral("Unit"), QStringLiteral("\u00b5m"));
    }
}
