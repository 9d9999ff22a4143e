#include <cloud/taskrecord.h>

#include <base/fieldtext.h>
#include <base/trace.h>
#include <core/filedays.h>
#include <core/taskkey.h>

#include <QUuid>

#include <cmath>
#include <utility>

namespace oblino {

namespace {

enum TaskField {
    KeyField,
    DateField,
    NameField,
    DescField,
    DueField,
    StatusField,
    StatusNameField,
    PriorityField,
    PriorityNameField,
    HiddenField,
    StartHourField,
    StartMinField,
    EndHourField,
    EndMinField,
    ClientField,
    TeamMemberField,
    ColorRedField,
    ColorGreenField,
    ColorBlueField,
    ColorAlphaField,
};

// Sets a value where the record holds one of its type.
template<typename Value>
void read(Value &value, const CloudRecord &record, TaskField field)
{
    const QVariant &held = record.value(field);
    if (held.typeId() == qMetaTypeId<Value>())
        value = held.value<Value>();
}

double readComponent(const CloudRecord &record, TaskField field)
{
    double component = 1;
    read(component, record, field);
    return std::isfinite(component) ? component : 1;
}

Color readColor(const CloudRecord &record, bool inDark)
{
    const Color color(readComponent(record, ColorRedField), readComponent(record, ColorGreenField),
                      readComponent(record, ColorBlueField), readComponent(record, ColorAlphaField));
    if (!inDark)
        return color;
    trace("In dark mode -> Invert");
    return color.inverted();
}

// Made of the record's name, so that the next merge finds the task that the record has become.
QString readKey(const CloudRecord &record)
{
    static const QUuid keyless(QStringLiteral("{5d3c8d3e-6b0c-4f0b-9c53-2f6a1f1f6c6b}"));
    QString key;
    read(key, record, KeyField);
    return key.isEmpty()
               ? QUuid::createUuidV5(keyless, record.recordName()).toString(QUuid::WithoutBraces).toUpper()
               : key;
}

// The components of a Color are those of the device already.
Color writtenColor(const Color &color, bool inDark)
{
    if (!inDark)
        return color;
    trace("Inverted -> Switch to original");
    return color.inverted();
}

} // namespace

const RecordType &taskRecordType()
{
    static const RecordType type(QStringLiteral("Task"), {{QStringLiteral("key"), FieldType::Text},
                                                          {QStringLiteral("date"), FieldType::DateTime},
                                                          {QStringLiteral("name"), FieldType::Text},
                                                          {QStringLiteral("desc"), FieldType::Text},
                                                          {QStringLiteral("due"), FieldType::DateTime},
                                                          {QStringLiteral("status"), FieldType::Integer},
                                                          {QStringLiteral("statusName"), FieldType::Text},
                                                          {QStringLiteral("priority"), FieldType::Integer},
                                                          {QStringLiteral("priorityName"), FieldType::Text},
                                                          {QStringLiteral("hidden"), FieldType::Boolean},
                                                          {QStringLiteral("startHour"), FieldType::Integer},
                                                          {QStringLiteral("startMin"), FieldType::Integer},
                                                          {QStringLiteral("endHour"), FieldType::Integer},
                                                          {QStringLiteral("endMin"), FieldType::Integer},
                                                          {QStringLiteral("client"), FieldType::Text},
                                                          {QStringLiteral("teamMember"), FieldType::Text},
                                                          {QStringLiteral("colorRed"), FieldType::Double},
                                                          {QStringLiteral("colorGreen"), FieldType::Double},
                                                          {QStringLiteral("colorBlue"), FieldType::Double},
                                                          {QStringLiteral("colorAlpha"), FieldType::Double}},
                                 QStringLiteral("key"));
    return type;
}

CloudRecord newTaskRecord(const task &t, bool inDark)
{
    CloudRecord record(taskRecordType(), newUuidText());
    record.setValue(KeyField, t.key);
    fillTaskRecord(record, t, inDark);
    return record;
}

void fillTaskRecord(CloudRecord &record, const task &t, bool inDark)
{
    record.setValue(DateField, t.date);
    record.setValue(NameField, t.name);
    record.setValue(DescField, t.desc);
    record.setValue(DueField, t.due);
    record.setValue(StatusField, t.status);
    record.setValue(StatusNameField, t.statusName);
    record.setValue(PriorityField, t.priority);
    record.setValue(PriorityNameField, t.priorityName);
    record.setValue(HiddenField, t.hidden);
    record.setValue(StartHourField, t.startHour);
    record.setValue(StartMinField, t.startMin);
    record.setValue(EndHourField, t.endHour);
    record.setValue(EndMinField, t.endMin);
    record.setValue(ClientField, t.client);
    record.setValue(TeamMemberField, t.teamMember);
    const Color color = writtenColor(t.color, inDark);
    record.setValue(ColorRedField, color.red());
    record.setValue(ColorGreenField, color.green());
    record.setValue(ColorBlueField, color.blue());
    record.setValue(ColorAlphaField, color.alpha());
}

task taskOfRecord(const CloudRecord &record, bool inDark, task made)
{
    task t = std::move(made);
    t.color = readColor(record, inDark);
    t.key = readKey(record);
    read(t.date, record, DateField);
    read(t.name, record, NameField);
    read(t.desc, record, DescField);
    read(t.due, record, DueField);
    read(t.status, record, StatusField);
    read(t.priority, record, PriorityField);
    read(t.statusName, record, StatusNameField);
    read(t.priorityName, record, PriorityNameField);
    read(t.hidden, record, HiddenField);
    read(t.startHour, record, StartHourField);
    read(t.startMin, record, StartMinField);
    read(t.endHour, record, EndHourField);
    read(t.endMin, record, EndMinField);
    read(t.client, record, ClientField);
    read(t.teamMember, record, TeamMemberField);
    t.key = withLookAlikes(t.key);
    t.date = withinFileDays(t.date);
    t.due = withinFileDays(t.due);
    return t;
}

} // namespace oblino
