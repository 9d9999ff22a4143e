#include <cloud/taskrecord.h>

#include <core/taskkey.h>
#include <platform/trace.h>

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

Color readColor(const CloudRecord &record, bool inDark)
{
    double red = 1;
    double green = 1;
    double blue = 1;
    double alpha = 1;
    read(red, record, ColorRedField);
    read(green, record, ColorGreenField);
    read(blue, record, ColorBlueField);
    read(alpha, record, ColorAlphaField);
    const Color color(red, green, blue, alpha);
    if (!inDark)
        return color;
    trace("In dark mode -> Invert");
    return color.inverted();
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
    read(t.key, record, KeyField);
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
    return t;
}

} // namespace oblino
