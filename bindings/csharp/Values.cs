// What settings are made of, beside their types: who may do what, and the device's words.
using System;

namespace Kestrel
{
    /// <summary>What can be done with a setting.</summary>
    public enum Access
    {
        /// <summary>Read and written.</summary>
        ReadWrite,
        /// <summary>Read only.</summary>
        ReadOnly,
        /// <summary>Written only.</summary>
        WriteOnly,
        /// <summary>Written, and the printer acts at once.</summary>
        Command
    }

    /// <summary>A setting as a program meets it that shows all of them.</summary>
    public sealed class Setting
    {
        private readonly Func<Printer, object> reader;

        internal Setting(string name, string about, Access access, bool isSecret, Func<Printer, object> reader)
        {
            Name = name;
            About = about;
            Access = access;
            IsSecret = isSecret;
            this.reader = reader;
        }

        /// <summary>What people call it: "fax.redials".</summary>
        public string Name { get; }

        /// <summary>A phrase for help.</summary>
        public string About { get; }

        /// <summary>What can be done with it.</summary>
        public Access Access { get; }

        /// <summary>Whether it is shown only to somebody who asks for exactly it.</summary>
        public bool IsSecret { get; }

        /// <summary>Its value, of the type of its property; a setting that cannot be read throws an
        /// InvalidOperationException.</summary>
        public object Read(Printer printer)
        {
            if (reader == null) throw new InvalidOperationException(Name + " cannot be read");
            return reader(printer);
        }
    }

    /// <summary>The device's words for the members of the enumerations, as <c>kestrel list</c> shows them.</summary>
    public static partial class Words
    {
        /// <summary>The word of a member: "Fine_Black" of FaxMode.FineBlack; empty for a number that is
        /// none.</summary>
        public static string Of(Enum value)
        {
            string[] words = Lists[value.GetType()];
            uint number = Convert.ToUInt32(value);
            return number < words.Length ? words[number] : "";
        }

        /// <summary>The member of that word, letter for letter; false when there is none.</summary>
        public static bool TryParse<T>(string word, out T value) where T : struct
        {
            int number = Array.IndexOf(Lists[typeof(T)], word);
            value = number < 0 ? default(T) : (T)Enum.ToObject(typeof(T), (uint)number);
            return number >= 0;
        }
    }
}
